// VELL: data-driven hierarchical state machines.
// tests/support/TestMachine.h: a machine whose inside a test may look at.
#pragma once

#include <vell/HSM.h>

#include "tests/support/DocumentBuilder.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vell::test
{

/// A machine built from a document's text through the constructor without arguments, so that a test
/// may set fields first. Protected operations and fields are open to tests.
class TestMachine : public HSM
{
public:
    /// Makes the machine and calls `Create`.
    explicit TestMachine(const std::string& documentText);
    explicit TestMachine(const DocumentBuilder& builder);
    /// Makes the machine without a document; `Load` gives it one.
    TestMachine() = default;
    /// Calls `Uninit` when the test has not.
    ~TestMachine() override;

    /// Sets the document and calls `Create`.
    int Load(const std::string& documentText);
    int Uninit() override;

    /// Names of the states on a stack, bottom first, with '/' between them; "-" when it is empty.
    std::string MainStack() const;
    std::string BlipStack() const;
    /// Ids of a "contextInfo" array, bottom first.
    std::vector<unsigned int> StackInTree(const char* key) const;
    /// A number of "contextInfo"; 0 without a tree.
    unsigned int ContextValue(const char* key) const;
    /// The last switch as "contextInfo" shows it: the transition, the previous and the next state.
    std::vector<unsigned int> LastSwitch() const;
    /// Sets a bool parameter of the document.
    void SetBool(const char* name, bool value);
    /// Ticks by a tenth of a second, `times` times.
    void Tick(int times = 1);
    /// Ticks once with the bool parameter `name` true.
    void TickWith(const char* name);

    using HSM::ActivateState;
    using HSM::ActivateTransitions;
    using HSM::alloc;
    using HSM::applyingContext;
    using HSM::blipActive;
    using HSM::blipPriority;
    using HSM::blipStack;
    using HSM::blipStackLevel;
    using HSM::ChangeState;
    using HSM::CreateKVTable;
    using HSM::currentStack;
    using HSM::document;
    using HSM::filePath;
    using HSM::FindState;
    using HSM::GetHSMType;
    using HSM::GetMemoryRequirements;
    using HSM::globalState;
    using HSM::ImportLayers;
    using HSM::ImportStates;
    using HSM::InitNodeDefTable;
    using HSM::InitParameterTable;
    using HSM::jsonText;
    using HSM::kvTable;
    using HSM::machineType;
    using HSM::nodeDefTable;
    using HSM::parameterTable;
    using HSM::previousState;
    using HSM::RegisterBuilders;
    using HSM::RegisterState;
    using HSM::StartState;
    using HSM::startStateID;
    using HSM::states;
    using HSM::stateStack;
    using HSM::UninitNodeDefTable;
    using HSM::UninitParameterTable;
    using HSM::UnRegisterBuilders;
    using HSM::UpdateState;
    using HSM::UpdateStateStack;

private:
    std::string text;
    bool uninitialised = false;
};

/// A machine that `Init` has succeeded on.
template <class Machine>
class Initialised : public Machine
{
public:
    explicit Initialised(const DocumentBuilder& builder) : Machine(builder)
    {
        EXPECT_EQ(this->Init(), 1);
    }
};

/// A machine that is initialised and started.
template <class Machine>
class Started : public Initialised<Machine>
{
public:
    explicit Started(const DocumentBuilder& builder) : Initialised<Machine>(builder)
    {
        this->Start();
    }
};

using InitialisedMachine = Initialised<TestMachine>;
using StartedMachine = Started<TestMachine>;

} // namespace vell::test
