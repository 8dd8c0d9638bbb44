// VELL: data-driven hierarchical state machines.
// tests/support/LoadedParameters.h: a parameter table without a machine.
#pragma once

#include "parameters/ParameterTable.h"
#include "tests/support/Definitions.h"

#include <vector>

namespace vell::test
{

/// A parameter table that was given an array of parameters, in an arena of its own.
class LoadedParameters
{
public:
    explicit LoadedParameters(const std::vector<Json>& parameters)
        : array(Json::Array(parameters)), result(table.Init(*array, &alloc))
    {
    }
    ~LoadedParameters()
    {
        table.Uninit();
    }
    LoadedParameters(const LoadedParameters&) = delete;
    LoadedParameters& operator=(const LoadedParameters&) = delete;

    /// Finds a parameter of class T by its name; null when it is of another class or not there.
    template <class T>
    T* Find(const char* name)
    {
        return dynamic_cast<T*>(table.FindParameter(table.GetParameterID(name)));
    }

    Arena alloc;
    ParsedJson array;
    ParameterTable table;
    int result; ///< of Init
};

} // namespace vell::test
