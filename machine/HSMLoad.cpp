// VELL: data-driven hierarchical state machines.
// machine/HSMLoad.cpp: from a document's text to full tables.
#include <durm/DURMBaseLib.h>
#include <vell/HSM.h>

#include "definitions/NodeDefTable.h"
#include "document/DocumentParser.h"
#include "document/JsonReader.h"
#include "foundation/Checks.h"
#include "machine/HSMInternals.h"
#include "parameters/ParameterTable.h"

#include <string>
#include <utility>

namespace vell
{
namespace
{

/// Required: the arena is this many times the figure of the head, in 32 bits. A large figure wraps
/// around to a small arena.
constexpr unsigned int kMemoryFactor = 100;
// Required: the factor applies to the default too, so a document without a figure gets 100 MiB.
constexpr int kDefaultMemory = 0x100000;
constexpr int kRestingBlipPriority = 1;

} // namespace

int HSM::Create()
{
    const unsigned int errorCode = ParseDocument();
    if (document.HasParseError())
    {
        LogStream(LogError)
            << "JSON file has errors, please run a validator on it and correct issues: "
            << errorCode << EndLine;
        ERROR_RETURN(false, 0);
    }
    const GenericValue& root = internals->RootOf(document);
    ERROR_RETURN(FindMember(root, JSON_Head) != nullptr, 0);
    const GenericValue& head = GetMember(root, JSON_Head);
    const unsigned int size =
        static_cast<unsigned int>(GetMemoryRequirements(head)) * kMemoryFactor;
    ForgetArena();
    // Required: a refused block is asked for twice; the load fails also when the second attempt
    // succeeds.
    ERROR_RETURN(alloc.Reserve(size), 0);
    const char* typeName = GetHSMType(head);
    ERROR_RETURN(typeName, 0);
    machineType = DURMBaseLib::GetStateMachineTypeByName(typeName);
    // Required: this brings the standard state factories back for all machines of the process.
    RegisterBuilders();
    nodeDefTable = alloc.New<NodeDefTable>();
    ERROR_RETURN(nodeDefTable, 0);
    return 1;
}

/// What an earlier Create and its machine left in the arena goes with the arena's block, and so
/// does a blip that ran on it.
void HSM::ForgetArena()
{
    internals->idle.Forget();
    internals->uninitStep = UninitStep::None;
    parameterTable = nullptr;
    nodeDefTable = nullptr;
    previousState = nullptr;
    globalState = nullptr;
    currentStack = nullptr;
    stateStack.clear();
    blipStack.clear();
    blipActive = false;
    blipPriority = kRestingBlipPriority;
    states.clear();
}

unsigned int HSM::ParseDocument()
{
    unsigned int errorCode = 0;
    internals->isSharing = false;
    if (filePath != nullptr)
    {
        internals->fileName = filePath;
        internals->Parse(ReadWholeFile(filePath).c_str(), document);
        errorCode = static_cast<unsigned int>(document.GetParseError());
    }
    if (jsonText != nullptr)
    {
        // Required: the code in the log line stays 0 on this path, whatever the parser said.
        internals->Parse(jsonText, document);
    }
    return errorCode;
}

void HSM::Internals::Parse(const char* text, GenericDocument& own)
{
    isSharing = std::exchange(mayShare, false) && sharedDocument.Hold(text);
    if (!isSharing)
    {
        ParseText(text, own);
    }
}

int HSM::GetMemoryRequirements(const GenericValue& head)
{
    ERROR_RETURN(head.IsObject(), 0);
    const GenericValue* memory = FindMember(head, JSON_HeadMemory);
    return memory == nullptr ? kDefaultMemory : ReadInt(*memory);
}

const char* HSM::GetHSMType(const GenericValue& head)
{
    ERROR_RETURN(head.IsObject(), nullptr);
    return ReadText(head, JSON_HeadMachineType);
}

int HSM::Init()
{
    const GenericValue& root = internals->RootOf(document);
    do
    {
        // Required: a failed step runs a second time, over what its first run left behind. Every
        // failure ends with the line about an exception, which never was thrown.
        ERROR_BREAK(InitParameterTable(root, &alloc));
        ERROR_BREAK(ImportLayers(root, &alloc));
        ERROR_BREAK(nodeDefTable);
        if (const GenericValue* head = FindMember(root, JSON_Head))
        {
            ERROR_BREAK(nodeDefTable->ImportHead(*head));
        }
        if (const GenericValue* skeleton = FindMember(root, JSON_Skeleton))
        {
            ERROR_BREAK(nodeDefTable->ImportSkel(*skeleton, &alloc));
        }
        if (const GenericValue* global = FindMember(root, JSON_Global))
        {
            ERROR_BREAK(nodeDefTable->ImportGlobal(*global, &alloc));
        }
        // Required: the head's entry node is only checked. The machine starts with the substate
        // root.
        startStateID = nodeDefTable->substateRootId;
        BindParamCond();
        ERROR_BREAK(CreateKVTable());
        return 1;
    } while (false);
    // Required: nothing is undone. What earlier steps built is still there after a failed Init.
    LogStream(LogError) << "Parsing JSON file has caused an exception" << EndLine;
    return 0;
}

int HSM::InitParameterTable(const GenericValue& root, HSMAlloc* arena)
{
    do
    {
        const GenericValue* parameters = FindMember(root, JSON_Parameters);
        if (parameters == nullptr)
        {
            return 1;
        }
        if (parameterTable == nullptr)
        {
            parameterTable = arena == nullptr ? nullptr : arena->New<ParameterTable>();
            ERROR_BREAK(parameterTable);
        }
        internals->idle.revision.Raise();
        // Required: a failed block runs twice here, and this step twice in Init, which makes four
        // runs. Only the first reads the array; the others fail because the table is already there.
        ERROR_BREAK(parameterTable->Init(*parameters, arena));
        return 1;
    } while (false);
    UninitParameterTable(arena);
    return 0;
}

int HSM::UninitParameterTable(HSMAlloc*)
{
    if (parameterTable != nullptr)
    {
        parameterTable->Uninit();
    }
    return 1;
}

int HSM::InitNodeDefTable(const GenericValue& nodes, HSMAlloc* arena)
{
    do
    {
        ERROR_BREAK(nodeDefTable);
        ERROR_BREAK(nodeDefTable->Init(nodes, arena));
        return 1;
    } while (false);
    UninitNodeDefTable(arena);
    return 0;
}

int HSM::UninitNodeDefTable(HSMAlloc*)
{
    if (nodeDefTable != nullptr)
    {
        nodeDefTable->Uninit();
    }
    return 1;
}

} // namespace vell
