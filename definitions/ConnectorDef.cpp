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
/// and so do two fixed words. The library is asked for no name behind the one that fits.
unsigned int FindConnectorKind(const char* text)
{
    const auto isNamed = [text](__CONNECTOR_TYPES__ type)
    {
        return EqualsIgnoringCase(text, DURMBaseLib::GetConnectorName(type));
    };
    if (isNamed(DURMBaseLib::CONNECTOR_In) || isNamed(DURMBaseLib::CONNECTOR_Entering) ||
        EqualsIgnoringCase(text, "Enter"))
    {
        return kEntering;
    }
    if (isNamed(DURMBaseLib::CONNECTOR_Out) || isNamed(DURMBaseLib::CONNECTOR_Exiting) ||
        EqualsIgnoringCase(text, "Exit"))
    {
        return kExiting;
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
