/// The end of a reason that leaves open what was done.
export const NOT_KNOWN = "Whether it was done all the same is not known.";
