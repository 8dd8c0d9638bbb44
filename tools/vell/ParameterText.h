// VELL: data-driven hierarchical state machines.
// tools/vell/ParameterText.h: parameters and conditions as a person writes and reads them.
#pragma once

#include <string>

namespace vell
{
class ConditionDef;
class IParameterTable;
class ParameterDef;
} // namespace vell

namespace vell::tool
{

/// Gives the shortest text that reads back as `number`.
std::string NumberText(float number);

/// Gives the current value: `true`, `3`, `1.5`, `0.3,0.8`; a text unchanged.
std::string ValueText(ParameterDef& parameter);

/// Sets the current value from a text. Returns an error message, or an empty text.
std::string SetValueFromText(ParameterDef& parameter, const std::string& text);

/// Compares the current value with a text. `fault` gets an error message when the text is invalid.
bool ValueEquals(ParameterDef& parameter, const std::string& text, std::string* fault);

/// Gives the parameter, or null when there is none with this name, without a log line.
ParameterDef* FindParameter(IParameterTable* table, const std::string& name);

/// Gives `speed > 1.5`, `stance == "crouched"`, `height in 1..2`. A parameter that does not exist
/// is shown by its id.
std::string ConditionText(const ConditionDef& condition, IParameterTable* table);

/// Gives the value that the condition sees, a text in quotes; empty when it is not bound.
std::string SeenText(const ConditionDef& condition);

} // namespace vell::tool
