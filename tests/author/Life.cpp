// VELL: data-driven hierarchical state machines.
// tests/author/Life.cpp: a short life with changing parameters.
#include "tests/author/Life.h"

#include <durm/DURMBaseLib.h>
#include <vell/Factories.h>
#include <vell/IHSM.h>
#include <vell/IParameterTable.h>
#include <vell/ParameterDef.h>

#include "definitions/GenericDef.h"
#include "tests/support/TreeLines.h"
#include "tools/check/DocumentModel.h"
#include "tools/source/Reader.h"
#include "tools/vell/LogRedirect.h"
#include "tools/vell/ParameterText.h"

#include <algorithm>
#include <memory>
#include <random>
#include <stdexcept>
#include <string_view>

namespace vell::test
{
namespace
{

constexpr int kTicks = 25;

std::vector<std::string>* lines = nullptr;

void Record(int, const char* text)
{
    // A layer has a name for the log alone; two of one name are told apart in a source.
    if (std::string_view(text).find("Importing Layer") == std::string_view::npos)
    {
        lines->emplace_back(text);
    }
}

void RegisterHostBuilders(IHSM& machine, const check::DocumentModel& model)
{
    for (const check::NodeModel& node : model.nodes)
    {
        if (node.IsOfHost())
        {
            machine.RegisterNodeDef(static_cast<__DURM_BUILDERS__>(node.builder),
                                    GenericDef::Create);
        }
    }
}

void ChangeParameters(IHSM& machine, std::mt19937& random)
{
    static const char* const kValues[] = {"true", "false", "0",  "1",    "3",
                                          "-1",   "0.5",   "40", "door", "go"};
    IParameterTable* const table = machine.GetParameterTable();
    for (int i = 0; table != nullptr && i < table->GetParameterCount(); ++i)
    {
        const unsigned int id = table->GetParameterIDByIndex(static_cast<unsigned int>(i));
        ParameterDef* const parameter = table->FindParameter(id);
        if (parameter != nullptr && random() % 3 == 0)
        {
            tool::SetValueFromText(*parameter, kValues[random() % 10]);
        }
    }
}

void Tick(IHSM& machine)
{
    try
    {
        machine.Update(0.1f);
    }
    catch (const std::out_of_range&)
    {
        // A blip that ends above a shorter main stack.
    }
}

} // namespace

Life Live(const std::string& text, unsigned int seed)
{
    Life life;
    const source::Text read = source::ReadText(text);
    const check::DocumentModel model(read.root);
    const tool::LogRedirect silence("");
    lines = &life.load;
    DURMBaseLib::SetLogCallBackBase(Record);
    const std::unique_ptr<IHSM> machine(CreateHSMJson(text.c_str()));
    RegisterHostBuilders(*machine, model);
    const bool isLoaded = machine->Init() != 0;
    std::sort(life.load.begin(), life.load.end());
    lines = &life.run;
    if (isLoaded)
    {
        life.tree = TreeLines(machine->GetKVTable());
        std::mt19937 random(seed);
        machine->Start();
        for (int tick = 0; tick < kTicks; ++tick)
        {
            ChangeParameters(*machine, random);
            Tick(*machine);
            for (const std::string& line : TreeLines(TableAt(machine->GetKVTable(), "contextInfo")))
            {
                life.stacks.push_back(line);
            }
        }
    }
    DURMBaseLib::SetLogCallBackBase(nullptr);
    machine->Uninit();
    machine->Destroy();
    return life;
}

} // namespace vell::test
