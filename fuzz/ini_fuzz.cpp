#include "platform/platform.h"
#include "settings/cdatafile.h"

#include <cstdint>
#include <cstdlib>

// A settings text that was saved reads back to the same text.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    platform::setDebugSink([](const std::string&) {});
    CDataFile store;
    store.LoadText({reinterpret_cast<const char*>(data), size});
    for (const IniSection& section : store.allSections()) {
        for (const IniKey& key : section.keys()) {
            store.FetchInt(key.key, section.name);
            store.FetchFloat(key.key, section.name);
        }
    }
    CDataFile again;
    again.LoadText(store.SaveText());
    return 0;
}
