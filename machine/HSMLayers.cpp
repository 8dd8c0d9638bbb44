// VELL: data-driven hierarchical state machines.
// machine/HSMLayers.cpp: the layers of a document.
#include <vell/HSM.h>

#include "document/JsonReader.h"
#include "foundation/Checks.h"
#include "machine/HSMInternals.h"

namespace vell
{

// Required: the root tells which members there are; what is imported are those of the machine's own
// document, into its own arena.
int HSM::ImportLayers(const GenericValue& root, HSMAlloc*)
{
    const GenericValue& ownRoot = internals->RootOf(document);
    int result = 0;
    do
    {
        if (FindMember(root, JSON_Layers) == nullptr)
        {
            ERROR_BREAK(FindMember(root, JSON_Nodes) != nullptr);
            // Required: nodes at the root are taken in, twice by Init, and the load fails all the
            // same.
            ERROR_BREAK(InitNodeDefTable(GetMember(ownRoot, JSON_Nodes), &alloc));
            break;
        }
        const GenericValue& layers = GetMember(ownRoot, JSON_Layers);
        ERROR_BREAK(layers.IsArray());
        LogStream(LogPlain) << "\n\nImporting HSM layers" << EndLine;
        LogStream(LogPlain) << "--------------------\n\n" << EndLine;
        for (unsigned int i = 0; i < layers.Size(); ++i)
        {
            const GenericValue& layer = layers[i];
            LogStream(LogPlain) << "Importing Layer[" << i << "]: " << ReadText(layer, JSON_Name)
                                << EndLine;
            LogStream(LogPlain) << "---------------------------------------" << EndLine;
            // Required: a failed layer runs a second time and takes the nodes of all layers with
            // it. It ends the loop over the layers, not the load.
            ERROR_BREAK(ImportStates(layer, &alloc));
            LogStream(LogPlain) << "\n" << EndLine;
        }
        result = 1;
    } while (false);
    return result;
}

int HSM::ImportStates(const GenericValue& layer, HSMAlloc*)
{
    const GenericValue* nodes = FindMember(layer, JSON_Nodes);
    ERROR_RETURN(nodes != nullptr, 0);
    // Required: three checks in a row run a failed array twice, so the nodes before the bad one are
    // built eight times. Each time takes new space in the arena.
    ERROR_RETURN(InitNodeDefTable(*nodes, &alloc), 0);
    return 1;
}

} // namespace vell
