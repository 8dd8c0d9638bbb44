// VELL: data-driven hierarchical state machines.
// tools/check/CodesOfIds.cpp: the codes of ids.
#include "tools/check/Code.h"

namespace vell::check
{

const CodeTable& IdCodes()
{
    static const CodeTable table = {
        {Code::NodeWithoutId, Severity::Error, "a node without an id",
         "The id is missing or 0, which means none, so nothing can refer to the node, and a second "
         "such node ends its layer. Give the node an id of its own.",
         "{\"name\": \"Walk\", \"id\": 0, \"builder\": \"generic\"}",
         "{\"name\": \"Walk\", \"id\": 11, \"builder\": \"generic\"}"},
        {Code::DuplicateNodeId, Severity::Error, "two nodes with one id",
         "Ids are unique across all layers and `global`. At a node whose id is taken, the library "
         "stops reading the layer: that node and all behind it are missing from the machine. The "
         "second place is the first node with the id.",
         "{\"name\": \"Walk\", \"id\": 11, \"builder\": \"generic\"},\n{\"name\": \"Run\", \"id\": "
         "11, \"builder\": \"generic\"}",
         "{\"name\": \"Walk\", \"id\": 11, \"builder\": \"generic\"},\n{\"name\": \"Run\", \"id\": "
         "12, \"builder\": \"generic\"}"},
        {Code::ParameterWithoutId, Severity::Error, "a parameter without an id",
         "The id is missing or 0, which means none, and the library leaves the parameter out. The "
         "id of a parameter is the CRC of its name; `vell id NAME` prints it.",
         "{\"name\": \"speed\", \"id\": 0, \"parameterType\": \"float\"}",
         "{\"name\": \"speed\", \"id\": 254213878, \"parameterType\": \"float\"}"},
        {Code::DuplicateParameterId, Severity::Error, "two parameters with one id",
         "The library leaves the second parameter out. The id of a parameter is the CRC of its "
         "name; `vell id NAME` prints it.",
         "{\"name\": \"speed\", \"id\": 254213878, \"parameterType\": \"float\"},\n{\"name\": "
         "\"armed\", \"id\": 254213878, \"parameterType\": \"bool\"}",
         "{\"name\": \"speed\", \"id\": 254213878, \"parameterType\": \"float\"},\n{\"name\": "
         "\"armed\", \"id\": 2971444007, \"parameterType\": \"bool\"}"},
        {Code::DuplicateParameterName, Severity::Error, "two parameters with one name",
         "The library leaves the second parameter out.",
         "{\"name\": \"speed\", \"id\": 254213878, \"parameterType\": \"float\"},\n{\"name\": "
         "\"speed\", \"id\": 7, \"parameterType\": \"integer\"}",
         "{\"name\": \"speed\", \"id\": 254213878, \"parameterType\": \"float\"},\n{\"name\": "
         "\"armed\", \"id\": 2971444007, \"parameterType\": \"bool\"}"},
        {Code::ParameterIdNotCrc, Severity::Warning,
         "a parameter whose id is not the CRC of its name",
         "The library takes any id. But a host that computes the id from the name does not find "
         "this parameter, and one that creates a parameter of this name gets another id. `vell id "
         "NAME` prints the id.",
         "{\"name\": \"speed\", \"id\": 7, \"parameterType\": \"float\"}",
         "{\"name\": \"speed\", \"id\": 254213878, \"parameterType\": \"float\"}"},
        {Code::NameForId, Severity::Error, "a name in place of an id",
         "Nodes and parameters are named by their ids. The library reads a text as 0. `vell id "
         "NAME` prints the id of a parameter.",
         "{\"conditionType\": \"float\", \"parameter\": \"speed\"}",
         "{\"conditionType\": \"float\", \"parameter\": 254213878}"},
    };
    return table;
}

} // namespace vell::check
