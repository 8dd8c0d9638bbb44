// VELL: data-driven hierarchical state machines.
// document/SharedDocument.cpp: the registry of the documents that machines hold.
#include "document/SharedDocument.h"

#include "document/DocumentParser.h"

#include <rapidjson/document.h>

#include <cstddef>
#include <map>
#include <memory>
#include <mutex>
#include <string>

namespace vell
{
namespace
{

/// A longer text is hardly that of a crowd, and the copy would be felt in its load.
constexpr std::size_t kMaxLength = 256u << 10;

} // namespace

struct SharedDocument::Entry
{
    explicit Entry(std::string_view newText) : text(newText)
    {
        ParseText(text.c_str(), document);
    }

    const std::string text;
    GenericDocument document;
    unsigned int holders = 0; ///< guarded by the registry's mutex, unlike the others
};

struct SharedDocument::Registry
{
    using Entries = std::multimap<std::size_t, std::unique_ptr<Entry>>;

    /// The one registry of the process. It is never destroyed, so that a machine may still be
    /// deleted while static objects are destroyed.
    static Registry& Get()
    {
        static auto* registry = new Registry;
        return *registry;
    }

    /// Gives the position of `text`, or the end.
    Entries::iterator Find(std::string_view text)
    {
        auto position = entries.lower_bound(text.size());
        while (position != entries.end() && position->first == text.size())
        {
            if (position->second->text == text)
            {
                return position;
            }
            ++position;
        }
        return entries.end();
    }

    /// Gives the document of `text` to one more holder, or null.
    Entry* Take(std::string_view text)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        const auto position = Find(text);
        if (position == entries.end())
        {
            return nullptr;
        }
        ++position->second->holders;
        return position->second.get();
    }

    /// Files a document and gives it to its first holder. Another thread may have filed the same
    /// text in the meantime: both stay.
    Entry* Add(std::unique_ptr<Entry> added)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        const auto position = entries.emplace(added->text.size(), std::move(added));
        position->second->holders = 1;
        return position->second.get();
    }

    /// Takes one holder off. Gives the document back when that was the last one.
    std::unique_ptr<Entry> Release(Entry* released)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        std::unique_ptr<Entry> last;
        if (--released->holders == 0)
        {
            auto position = entries.lower_bound(released->text.size());
            while (position->second.get() != released)
            {
                ++position;
            }
            last = std::move(position->second);
            entries.erase(position);
        }
        return last;
    }

    std::mutex mutex;
    Entries entries; ///< by length
};

SharedDocument::~SharedDocument()
{
    if (entry != nullptr)
    {
        Registry::Get().Release(entry);
    }
}

bool SharedDocument::Hold(std::string_view text)
{
    if (text.size() > kMaxLength)
    {
        return false;
    }
    Registry& registry = Registry::Get();
    entry = registry.Take(text);
    if (entry == nullptr)
    {
        // Not under the lock: other threads need not wait for the parse.
        auto added = std::make_unique<Entry>(text);
        if (added->document.HasParseError())
        {
            return false;
        }
        entry = registry.Add(std::move(added));
    }
    return true;
}

const GenericValue* SharedDocument::Root() const
{
    return entry == nullptr ? nullptr : &entry->document;
}

} // namespace vell
