/// The fields of one import filter.
import { make } from "./dom";
import {
  QUANTITIES,
  SALINITY_WORDS,
  SEPARATORS,
  emptyFilter,
  type Faults,
  type Filter,
  type FilterField,
  type Quantity,
  type SalinityWord,
  type Separator,
} from "./filters";

const COLUMN_LABELS: Readonly<Record<Quantity, string>> = {
  depth: "Depth",
  speed: "Sound speed",
  temperature: "Temperature",
  salinity: "Salinity",
  absorption: "Absorption",
};

/// What the fields are for; also said to a screen reader.
const HINTS: Readonly<Partial<Record<FilterField, string>>> = {
  name: "Without blanks",
  postfix: "End of the file names",
  skip: "From 1, as in 1;3-5",
  depthFactor: "1 for metres",
  speedFactor: "1 for m/s",
};

type TextField = "name" | "postfix" | "skip" | "depthFactor" | "speedFactor";
const TEXT_FIELDS: readonly { key: TextField; label: string }[] = [
  { key: "name", label: "Name" },
  { key: "postfix", label: "Suffix" },
  { key: "skip", label: "Lines to skip" },
  { key: "depthFactor", label: "Depth factor" },
  { key: "speedFactor", label: "Speed factor" },
];

export class FilterForm {
  readonly element = make("div", "filter-form");
  private readonly inputs = new Map<FilterField, HTMLInputElement>();
  private readonly faults = new Map<FilterField, HTMLElement>();
  private readonly separator = choice(SEPARATORS);
  private readonly salinity = choice(SALINITY_WORDS);

  /// `changed` is called after each change by the user.
  constructor(private readonly changed: () => void) {
    const texts = make("div", "filter-fields");
    for (const { key, label } of TEXT_FIELDS) texts.append(this.text(key, label));
    texts.insertBefore(labelled("filter-separator", "Separator", this.separator), texts.children[2] ?? null);
    const columns = make("fieldset", "filter-fields filter-columns", make("legend", "", "Columns, counted from 0"));
    for (const quantity of QUANTITIES) columns.append(this.text(quantity, COLUMN_LABELS[quantity]));
    columns.append(labelled("filter-salinity-word", "Salinity means", this.salinity));
    this.element.append(texts, columns);
    for (const select of [this.separator, this.salinity]) select.addEventListener("change", changed);
  }

  get value(): Filter {
    const text = (key: FilterField) => this.inputs.get(key)?.value.trim() ?? "";
    const columns = { ...emptyFilter().columns };
    for (const quantity of QUANTITIES) columns[quantity] = text(quantity);
    return {
      name: text("name"),
      postfix: text("postfix"),
      columns,
      skip: text("skip"),
      depthFactor: text("depthFactor"),
      speedFactor: text("speedFactor"),
      separator: this.separator.value as Separator,
      salinity: this.salinity.value as SalinityWord,
    };
  }

  set value(filter: Filter) {
    for (const [key, input] of this.inputs) {
      input.value = isQuantity(key) ? filter.columns[key] : filter[key];
    }
    this.separator.value = filter.separator;
    this.salinity.value = filter.salinity;
    this.tell({});
  }

  /// Gives a quantity to a column and takes it from any other; `null` frees the column.
  assign(column: number, quantity: Quantity | null): void {
    for (const each of QUANTITIES) {
      const input = this.inputs.get(each);
      if (!input) continue;
      if (each === quantity) input.value = String(column);
      else if (Number(input.value.trim() || NaN) === column) input.value = "";
    }
    this.changed();
  }

  /// Shows what is wrong at the fields, and nothing at the others. True when nothing is.
  tell(faults: Faults): boolean {
    for (const [key, place] of this.faults) {
      const fault = faults[key] ?? "";
      place.textContent = fault;
      place.hidden = fault === "";
      this.inputs.get(key)?.setAttribute("aria-invalid", String(fault !== ""));
    }
    return Object.values(faults).every((fault) => !fault);
  }

  /// Puts the keyboard on the first field that is wrong, or on the first of all.
  focus(): void {
    const inputs = [...this.inputs.values()];
    const input = inputs.find((each) => each.getAttribute("aria-invalid") === "true") ?? inputs[0];
    input?.focus();
    input?.select();
  }

  private text(key: FilterField, label: string): HTMLElement {
    const input = make("input");
    input.autocomplete = "off";
    input.spellcheck = false;
    if (isQuantity(key)) input.inputMode = "numeric";
    const field = labelled(`filter-${key}`, label, input);
    const hint = make("p", "field-hint", HINTS[key] ?? "");
    hint.id = `${input.id}-hint`;
    hint.hidden = !HINTS[key];
    const fault = make("p", "field-fault");
    fault.id = `${input.id}-fault`;
    fault.setAttribute("role", "alert");
    fault.hidden = true;
    input.setAttribute("aria-describedby", `${hint.id} ${fault.id}`);
    input.addEventListener("input", () => {
      fault.hidden = true;
      fault.textContent = "";
      input.setAttribute("aria-invalid", "false");
      this.changed();
    });
    field.append(hint, fault);
    this.inputs.set(key, input);
    this.faults.set(key, fault);
    return field;
  }
}

function isQuantity(key: FilterField): key is Quantity {
  return (QUANTITIES as readonly string[]).includes(key);
}

function labelled(id: string, text: string, input: HTMLInputElement | HTMLSelectElement): HTMLElement {
  input.id = id;
  const label = make("label", "", text);
  label.htmlFor = id;
  return make("div", "filter-field", label, input);
}

/// A choice among words, with its labels.
function choice(labels: Readonly<Record<string, string>>): HTMLSelectElement {
  const select = make("select");
  select.append(...Object.entries(labels).map(([word, label]) => new Option(label, word)));
  return select;
}
