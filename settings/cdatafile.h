#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

/// One key of a section with its value and the comment lines above it. Byte strings.
struct IniKey
{
    std::string key;
    std::string value;
    std::string comment; ///< several lines joined by "\n"; empty where there is none
};

/// One section: its keys in the order in which they were made.
class IniSection
{
  public:
    IniSection(std::string sectionName, std::string sectionComment);

    std::string name;
    std::string comment; ///< several lines joined by "\n"; empty where there is none

    const std::vector<IniKey>& keys() const { return m_keys; }

    /// The key of that name, compared without regard to case; null if there is none.
    const IniKey* find(std::string_view key) const;
    IniKey* find(std::string_view key);

    /// Appends a key that is not there yet.
    void append(IniKey key);

  private:
    std::vector<IniKey> m_keys;
    std::unordered_map<std::string, std::size_t> m_index; // lower-case name to place in m_keys
};

/// A store of sectioned key/value text with comments, and its file form.
///
/// In a file, a line that begins with ";" or "#" is a comment, one that begins with "[" opens a
/// section, and every other one is a key and a value, separated by the first "=" or ":". White
/// space around lines, keys and values carries no meaning. Section and key names compare without
/// regard to (ASCII) case. Values are text; numbers in it have a decimal point in every locale.
///
/// A copy is an independent store. Nothing throws but for lack of memory.
class CDataFile
{
  public:
    /// Levels of `Trace`, in the order of their tags.
    enum Level
    {
        Debug,
        Info,
        Warn,
        Error,
        Fatal,
        Critical
    };

    /// What `PutValue` may create by itself.
    enum CreateFlag : unsigned
    {
        CREATE_SECTIONS = 1U,
        CREATE_KEYS = 2U
    };

    /// Value of `FetchInt` where there is no text.
    static const int noInt;
    /// Value of `FetchFloat` where there is no text: the smallest normal 32-bit float.
    static const float noFloat;

    /// Longest line that is read, in bytes; what lies beyond is cut off.
    static constexpr std::size_t maxLineLength = 65535;
    /// Size of the buffer of a written comment or section line and of a diagnostic, with end mark.
    static constexpr std::size_t shortBuffer = 512;

    /// An empty store: the unnamed section alone, both create flags set.
    CDataFile();

    /// Sets the path that `Save` writes to, a UTF-8 text. A change of an earlier name (compared
    /// without regard to case) marks the store dirty and is reported.
    void SetFileName(const std::string& name);

    /// Adds the content of a file (path in UTF-8) to the store. False when it cannot be opened.
    /// Never creates a file.
    bool Load(const std::string& file);

    /// Adds the content of `text`, a file read whole, to the store.
    void LoadText(std::string_view text);

    /// Replaces the file by the store's content. False, and the file as it was, when there is
    /// nothing to save, no name, or the file cannot be written.
    bool Save();

    /// The text that `Save` writes.
    std::string SaveText() const;

    /// Appends a section. False, with a report, if there is one of that name.
    bool CreateSection(const std::string& name, const std::string& comment);

    /// Sets value and comment of a key; makes section and key where the create flags allow. A
    /// key is never made for an empty value. False when nothing was set.
    bool PutValue(const std::string& key, const std::string& value, const std::string& comment,
                  const std::string& section);
    /// `PutValue` with the number in decimal.
    bool PutInt(const std::string& key, int value, const std::string& comment,
                const std::string& section);
    /// `PutValue` with six decimals: 1400 is stored as "1400.000000".
    bool PutFloat(const std::string& key, double value, const std::string& comment,
                  const std::string& section);
    /// `PutValue` with "True" or "False".
    bool PutBool(const std::string& key, bool value, const std::string& comment,
                 const std::string& section);

    /// The stored text; empty if the section or the key is absent.
    std::string FetchValue(const std::string& key, const std::string& section) const;
    /// The text as a decimal integer by the rules of `atoi`; `noInt` if it is empty.
    int FetchInt(const std::string& key, const std::string& section) const;
    /// The text as a decimal number by the rules of `atof`, as a 32-bit float; `noFloat` if it is
    /// empty.
    float FetchFloat(const std::string& key, const std::string& section) const;

    /// Writes a diagnostic (format of `printf`, at most 511 bytes) to the system's debug output,
    /// with the level's tag in front and a line end behind.
    static void Trace(int level, const char* format, ...) __attribute__((format(printf, 2, 3)));

    /// Whether something was changed since the last successful `Save`.
    bool isDirty() const { return dirty; }
    /// The sections in order of creation; the first one is the unnamed one.
    const std::vector<IniSection>& allSections() const { return sections; }
    /// Says what `PutValue` may create: any of `CREATE_SECTIONS` and `CREATE_KEYS`.
    void SetCreateFlags(unsigned flags) { createFlags = flags; }

  private:
    IniSection* findSection(std::string_view name);
    const IniSection* findSection(std::string_view name) const;

    std::vector<IniSection> sections;
    bool dirty = false;
    std::string fileName;
    unsigned createFlags = CREATE_SECTIONS | CREATE_KEYS;
    std::unordered_map<std::string, std::size_t> sectionIndex; // lower-case name to place
};
