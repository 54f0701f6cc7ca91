// The process-wide object registry.
#include "section_data/SKRObjectRegistry.h"

#include <map>

namespace skr {
namespace util {
namespace {

struct Entry {
    std::string name;
    std::string group;
    void* object = nullptr;
};

// Function-local so that registration from other static initialisers is safe.
std::map<std::string, Entry>& registry() {
    static std::map<std::string, Entry> entries;
    return entries;
}

}  // namespace

bool RegisterObject(const std::string& name, void* object, const std::string& group) {
    return registry().emplace(name + group, Entry{name, group, object}).second;
}

void* FetchObject(const std::string& name, const std::string& group) {
    const auto& entries = registry();
    const auto it = entries.find(group.empty() ? name : name + group);
    return it == entries.end() ? nullptr : it->second.object;
}

bool UnRegisterObject(const std::string& name, const std::string& group) {
    return registry().erase(name + group) > 0;
}

}  // namespace util
}  // namespace skr
