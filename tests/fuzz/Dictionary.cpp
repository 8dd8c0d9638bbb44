// VELL: data-driven hierarchical state machines.
// tests/fuzz/Dictionary.cpp: the words that a fuzzer of documents should know.
#include "tests/fuzz/Dictionary.h"

#include "tests/support/DocumentBuilder.h"

#include <initializer_list>
#include <string>

namespace vell::fuzz
{
namespace
{

using namespace DURMBaseLib;

constexpr int kNumbers = 256;

void AddWord(std::string& text, const char* word, const char* after)
{
    if (word != nullptr && *word != '\0')
    {
        text += "\"\\\"" + std::string(word) + "\\\"" + after + "\"\n";
    }
}

} // namespace

std::string DictionaryText()
{
    std::string text = "# Written by robustness_tests, see README.md: the vocabulary's words.\n";
    for (int i = 0; i < kNumbers; ++i)
    {
        AddWord(text, GetJsonName(static_cast<__JSONTYPES__>(i)), ":");
    }
    for (int i = 0; i < kNumbers; ++i)
    {
        AddWord(text, GetParameterName(static_cast<__ePARAMTYPE__>(i)), "");
        AddWord(text, GetConnectorName(static_cast<__CONNECTOR_TYPES__>(i)), "");
        const std::string builder = test::BuilderName(i);
        for (const std::string& word :
             {builder == std::to_string(i) ? std::string() : builder, test::OperatorName(i),
              test::AssignName(i), test::MachineTypeName(i)})
        {
            AddWord(text, word.c_str(), "");
        }
    }
    for (const char* type :
         {"QString", "int", "double", "QVector2D", "QVector3D", "QVector4D", "bool"})
    {
        AddWord(text, type, "");
    }
    return text;
}

} // namespace vell::fuzz
