// VELL: data-driven hierarchical state machines.
// document/SharedDocument.h: one parsed document for all machines of the same text.
#pragma once

#include <vell/Json.h>

#include <string_view>

namespace vell
{

/// A hold on a parsed document that other machines with the same text read too. A crowd of one
/// character parses its document once.
///
/// *Contract.* Nobody writes to the values, so only machines whose document no host can reach may
/// share: those of the factories, not those of a class derived from HSM. Whether a document is
/// shared is then not observable. The texts stay where they are as long as this.
///
/// Machines of several threads may hold and release at the same time. A document that nobody holds
/// any more is gone.
class SharedDocument
{
public:
    SharedDocument() = default;
    ~SharedDocument();
    SharedDocument(const SharedDocument&) = delete;
    SharedDocument& operator=(const SharedDocument&) = delete;

    /// Holds the document of `text`, which is terminated, from now on. False, with nothing held,
    /// when it is malformed, or too large to keep a copy of the text for comparison. To be called
    /// once.
    bool Hold(std::string_view text);

    /// Gives the document's root, or null when nothing is held.
    const GenericValue* Root() const;

private:
    struct Entry;
    struct Registry;

    Entry* entry = nullptr; ///< in the registry
};

} // namespace vell
