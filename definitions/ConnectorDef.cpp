// VELL: data-driven hierarchical state machines.
// definitions/ConnectorDef.cpp: an entering or exiting connector; no state runs it.
#include "definitions/ConnectorDef.h"

#include <durm/DURMBaseLib.h>

#include "definitions/DefPlacement.h"
#include "document/JsonReader.h"
#include "foundation/Checks.h"
#include "foundation/TextCompare.h"

namespace vell
{
namespace
{

constexpr unsigned int kEntering = 1;
constexpr unsigned int kExiting = 2;

/// Gives the kind that a document's text names, or 0. The library's four names lead to two kinds,
/// and so do two fixed words.
unsigned int FindConnectorKind(const char* text)
{
    using DURMBaseLib::GetConnectorName;
    const struct
    {
        const char* name;
        unsigned int kind;
    } names[] = {
        {GetConnectorName(DURMBaseLib::CONNECTOR_In), kEntering},
        {GetConnectorName(DURMBaseLib::CONNECTOR_Entering), kEntering},
        {"Enter", kEntering},
        {GetConnectorName(DURMBaseLib::CONNECTOR_Out), kExiting},
        {GetConnectorName(DURMBaseLib::CONNECTOR_Exiting), kExiting},
        {"Exit", kExiting},
    };
    for (const auto& entry : names)
    {
        if (EqualsIgnoringCase(text, entry.name))
        {
            return entry.kind;
        }
    }
    return 0;
}

} // namespace

BaseDef* ConnectorDef::Create(const GenericValue& node, HSMAlloc* alloc)
{
    ERROR_RETURN(node.IsObject(), nullptr);
    ConnectorDef* def = PlaceDef<ConnectorDef>(alloc, DefTypeConnector, DefTypesConnector);
    ERROR_RETURN(def, nullptr);
    return def;
}

int ConnectorDef::Init(const GenericValue& node, HSMAlloc* alloc)
{
    do
    {
        ERROR_BREAK(node.IsObject());
        // Required: unlike in the other classes, a failed base runs once.
        const int baseResult = BaseDef::Init(node, alloc);
        ERROR_BREAK(baseResult);
        const char* kindName = ReadText(node, JSON_ConnectorType);
        ERROR_BREAK(kindName);
        connectorKind = FindConnectorKind(kindName);
        if (connectorKind == 0)
        {
            LogStream(LogError) << "Json error, Unable to find a compatible connector type"
                                << EndLine;
            ERROR_BREAK(false);
        }
        return 1;
    } while (false);
    Uninit();
    return 0;
}

} // namespace vell
