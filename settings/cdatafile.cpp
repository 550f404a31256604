#include "settings/cdatafile.h"

#include "platform/platform.h"
#include "settings/numbers.h"

#include <QString>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <limits>

const int CDataFile::noInt = std::numeric_limits<int>::min();
const float CDataFile::noFloat = std::numeric_limits<float>::min();

namespace {

constexpr std::string_view whiteSpace = " \t\n\r";
constexpr std::string_view commentIndicators = ";#";
constexpr std::string_view equalIndicators = "=:";
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

std::string_view trimmed(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(whiteSpace);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(whiteSpace) - first + 1);
}

// ASCII only, whatever the locale: names of settings are no prose.
std::string lowerCase(std::string_view text)
{
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c; });
    return lower;
}

std::string writtenComment(const std::string& comment)
{
    const std::string_view text = trimmed(comment);
    if (text.empty() || commentIndicators.find(text.front()) != std::string_view::npos)
        return std::string(text);
    return "; " + std::string(text);
}

// Adds a line to a file text: what fits into a buffer of `bufferSize` with its end mark, then a
// line end unless the line has one.
void writeLine(std::string& file, std::string line, std::size_t bufferSize)
{
    if (line.size() >= bufferSize)
        line.resize(bufferSize - 1);
    if (line.empty() || (line.back() != '\n' && line.back() != '\r'))
        line += '\n';
    file += line;
}

} // namespace

IniSection::IniSection(std::string sectionName, std::string sectionComment)
    : name(std::move(sectionName)), comment(std::move(sectionComment))
{
}

const IniKey* IniSection::find(std::string_view key) const
{
    const auto place = m_index.find(lowerCase(key));
    return place == m_index.end() ? nullptr : &m_keys[place->second];
}

IniKey* IniSection::find(std::string_view key)
{
    const auto place = m_index.find(lowerCase(key));
    return place == m_index.end() ? nullptr : &m_keys[place->second];
}

void IniSection::append(IniKey key)
{
    m_index.emplace(lowerCase(key.key), m_keys.size());
    m_keys.push_back(std::move(key));
}

CDataFile::CDataFile()
{
    sections.emplace_back(std::string(), std::string());
    sectionIndex.emplace(std::string(), 0);
}

void CDataFile::SetFileName(const std::string& name)
{
    if (!fileName.empty() && lowerCase(fileName) != lowerCase(name)) {
        dirty = true;
        Trace(Warn, "[CDataFile::SetFileName] The filename has changed from <%s> to <%s>.",
              fileName.c_str(), name.c_str());
    }
    fileName = name;
}

bool CDataFile::Load(const std::string& file)
{
    QByteArray content;
    if (!platform::readFile(QString::fromStdString(file), content)) {
        Trace(Info, "[CDataFile::Load] Unable to open file. Does it exist?");
        return false;
    }
    LoadText({content.constData(), std::size_t(content.size())});
    return true;
}

void CDataFile::LoadText(std::string_view text)
{
    const unsigned keptFlags = createFlags;
    createFlags = CREATE_SECTIONS | CREATE_KEYS;

    // Windows editors mark UTF-8; without this the mark would hide the first section's name.
    if (text.substr(0, byteOrderMark.size()) == byteOrderMark)
        text.remove_prefix(byteOrderMark.size());

    std::string section;
    std::string comment;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        std::string_view line = text.substr(0, std::min(end, maxLineLength));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        line = trimmed(line);
        if (line.empty())
            continue;
        if (commentIndicators.find(line.front()) != std::string_view::npos) {
            comment += '\n';
            comment += line;
        } else if (line.front() == '[') {
            section = line.substr(1);
            const std::size_t bracket = section.rfind(']');
            if (bracket != std::string::npos)
                section.erase(bracket, 1);
            CreateSection(section, comment);
            comment.clear();
        } else {
            const std::size_t equal = line.find_first_of(equalIndicators);
            const std::string_view key = trimmed(line.substr(0, equal));
            const std::string_view value = equal == std::string_view::npos
                                               ? std::string_view()
                                               : trimmed(line.substr(equal + 1));
            if (!key.empty() && !value.empty()) {
                PutValue(std::string(key), std::string(value), comment, section);
                comment.clear();
            }
        }
    }
    createFlags = keptFlags;
}

bool CDataFile::Save()
{
    const bool hasKeys =
        std::any_of(sections.begin(), sections.end(),
                    [](const IniSection& section) { return !section.keys().empty(); });
    if (!hasKeys && sections.size() <= 1) {
        Trace(Info, "[CDataFile::Save] Nothing to save.");
        return false;
    }
    if (fileName.empty()) {
        Trace(Error, "[CDataFile::Save] No filename has been set.");
        return false;
    }
    if (!platform::replaceFile(QString::fromStdString(fileName),
                               platform::textFileBytes(QByteArray::fromStdString(SaveText())))) {
        Trace(Error, "[CDataFile::Save] Unable to save file.");
        return false;
    }
    dirty = false;
    return true;
}

std::string CDataFile::SaveText() const
{
    std::string file;
    for (const IniSection& section : sections) {
        const bool commented = !section.comment.empty();
        if (commented)
            writeLine(file, '\n' + writtenComment(section.comment), shortBuffer);
        if (!section.name.empty())
            writeLine(file, (commented ? "[" : "\n[") + section.name + ']', shortBuffer);
        for (const IniKey& key : section.keys()) {
            if (key.key.empty() || key.value.empty())
                continue;
            std::string line;
            if (!key.comment.empty())
                line.append("\n").append(writtenComment(key.comment)).append("\n");
            line.append(key.key).append("=").append(key.value);
            writeLine(file, line, maxLineLength);
        }
    }
    return file;
}

bool CDataFile::CreateSection(const std::string& name, const std::string& comment)
{
    if (findSection(name) != nullptr) {
        Trace(Info, "[CDataFile::CreateSection] Section <%s> allready exists. Aborting.",
              name.c_str());
        return false;
    }
    sectionIndex.emplace(lowerCase(name), sections.size());
    sections.emplace_back(name, comment);
    dirty = true;
    return true;
}

bool CDataFile::PutValue(const std::string& key, const std::string& value,
                         const std::string& comment, const std::string& section)
{
    IniSection* target = findSection(section);
    if (target == nullptr && (createFlags & CREATE_SECTIONS) != 0U) {
        CreateSection(section, {});
        target = findSection(section);
    }
    if (target == nullptr)
        return false;

    if (IniKey* existing = target->find(key)) {
        existing->value = value;
        existing->comment = comment;
    } else if (!value.empty() && (createFlags & CREATE_KEYS) != 0U) {
        target->append({key, value, comment});
    } else {
        return false;
    }
    dirty = true;
    return true;
}

bool CDataFile::PutInt(const std::string& key, int value, const std::string& comment,
                       const std::string& section)
{
    return PutValue(key, std::to_string(value), comment, section);
}

bool CDataFile::PutFloat(const std::string& key, double value, const std::string& comment,
                         const std::string& section)
{
    return PutValue(key, settings::fixedText(value), comment, section);
}

bool CDataFile::PutBool(const std::string& key, bool value, const std::string& comment,
                        const std::string& section)
{
    return PutValue(key, value ? "True" : "False", comment, section);
}

std::string CDataFile::FetchValue(const std::string& key, const std::string& section) const
{
    const IniSection* found = findSection(section);
    const IniKey* entry = found == nullptr ? nullptr : found->find(key);
    return entry == nullptr ? std::string() : entry->value;
}

int CDataFile::FetchInt(const std::string& key, const std::string& section) const
{
    const std::string text = FetchValue(key, section);
    return text.empty() ? noInt : settings::leadingInt(text);
}

float CDataFile::FetchFloat(const std::string& key, const std::string& section) const
{
    const std::string text = FetchValue(key, section);
    return text.empty() ? noFloat : settings::toFloat32(settings::leadingDouble(text));
}

void CDataFile::Trace(int level, const char* format, ...)
{
    static constexpr const char* tags[] = {"<debug> ", "<info> ",  "<warn> ",
                                           "<error> ", "<fatal> ", "<critical> "};
    char message[shortBuffer] = "";
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(message, sizeof message, format, arguments);
    va_end(arguments);

    std::string line(tags[std::clamp(level, int(Debug), int(Critical))]);
    line += message;
    if (line.back() != '\n' && line.back() != '\r')
        line += '\n';
    platform::debugOutput(line);
}

IniSection* CDataFile::findSection(std::string_view name)
{
    const auto place = sectionIndex.find(lowerCase(name));
    return place == sectionIndex.end() ? nullptr : &sections[place->second];
}

const IniSection* CDataFile::findSection(std::string_view name) const
{
    const auto place = sectionIndex.find(lowerCase(name));
    return place == sectionIndex.end() ? nullptr : &sections[place->second];
}
