// VELL: data-driven hierarchical state machines.
// tools/vell/HelpText.h: paragraphs that several commands' help texts share.
#pragma once

namespace vell::tool
{

constexpr const char* kScriptHelp = R"(
A script has one instruction per line. A comment starts with #.
  tick [N]                    run N ticks, or one
  set NAME VALUE              set a parameter: set speed 1.5,
                              set grounded true, set stick 0.3,0.8,
                              set stance crouched
  message NAME                fire a message
  expect stack A/B/C          the names on the stack, from the bottom;
                              - for an empty stack
  expect param NAME VALUE     the value of a parameter
  expect blip yes|no          whether a blip is running
Put names with spaces in quotes. A failed expectation is shown with file and
line on standard error.)";

} // namespace vell::tool
