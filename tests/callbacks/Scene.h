// VELL: data-driven hierarchical state machines.
// tests/callbacks/Scene.h: one machine's whole life, in which every callback is reached.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace vell::callbacks
{

struct Cast;

/// One step of the scene.
struct Step
{
    const char* name;
    void (*run)(Cast& cast);
};

/// The document of the scene: states of every class in a ring, each left by a cue of its own, and a
/// global node with a blip that ends at an exit node.
const char* SceneDocument();

/// Gives the steps, from the building of a machine to its deletion. Each bears what an operation in
/// a callback may have left: a parameter that is gone, a machine that did not load.
const std::vector<Step>& Steps();

/// Gives the step with which the machine begins to go.
std::size_t FirstStepOfTheEnd();

/// Runs the steps from `first` to before `end`. A tick's std::out_of_range ends its step.
void RunSteps(Cast& cast, std::size_t first, std::size_t end);

// Nodes of the scene's document, for the operations.
constexpr unsigned int kIdle = 10;
constexpr unsigned int kWalk = 11;
constexpr unsigned int kFlinch = 12;
constexpr unsigned int kRest = 13;
constexpr unsigned int kCombat = 20;
constexpr unsigned int kOut = 22;
constexpr unsigned int kGuard = 23;
constexpr unsigned int kScout = 24;
constexpr unsigned int kLobby = 25;
constexpr unsigned int kGlobal = 50;
constexpr unsigned int kOver = 70;
constexpr unsigned int kCamera = 80;
constexpr unsigned int kLens = 81;
constexpr unsigned int kGo = 100;

} // namespace vell::callbacks
