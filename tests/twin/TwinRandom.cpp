// VELL: data-driven hierarchical state machines.
// tests/twin/TwinRandom.cpp: random operations on a random document.
#include "tests/model/Random.h"
#include "tests/twin/OperationKinds.h"

namespace twin
{
namespace
{

/// Draws operations, more often those of more weight.
class Drawer
{
public:
    Drawer(unsigned long long seed, const std::string& without) : random(seed)
    {
        for (const OperationKind& kind : AllOperations())
        {
            const bool isLeftOut =
                ("," + without + ",").find("," + std::string(kind.name) + ",") != std::string::npos;
            weights.push_back(isLeftOut ? 0 : kind.weight);
            total += weights.back();
        }
    }

    Operation Draw(bool isInner)
    {
        static const float times[] = {0.016f, 0.5f, 0.0f, 1.25f};
        Operation operation;
        operation.kind = DrawKind();
        while (isInner && AllOperations()[operation.kind].place == Place::Outside)
        {
            operation.kind = DrawKind();
        }
        for (unsigned int& pick : operation.picks)
        {
            pick = static_cast<unsigned int>(random.Below(100000));
        }
        operation.time = random.PickFrom(times);
        operation.value = DrawValue();
        if (!isInner && random.Chance(50))
        {
            operation.inner.push_back(Draw(true));
        }
        return operation;
    }

    model::Random random;

private:
    std::size_t DrawKind()
    {
        int left = random.Between(0, total - 1);
        std::size_t kind = 0;
        while (left >= weights[kind])
        {
            left -= weights[kind];
            ++kind;
        }
        return kind;
    }

    model::Value DrawValue()
    {
        static const int wholes[] = {0, 1, 2, 3, 4, 5, -1, -2, 2147483647, 1056964608};
        static const float reals[] = {0.0f,  0.5f,  1.0f, 1.005f, 1.01f,
                                      0.01f, -1.0f, 2.5f, -0.0f,  100.0f};
        static const char* const texts[] = {"go", "stop", "Go", ""};
        model::Value value;
        value.flag = random.Chance(50);
        value.whole = random.PickFrom(wholes);
        for (float& real : value.reals)
        {
            real = random.PickFrom(reals);
        }
        value.text = random.PickFrom(texts);
        return value;
    }

    std::vector<int> weights;
    int total = 0;
};

/// Takes conditions away, so that machines come to rest: what an idle tick passes over is what is
/// to be tested.
void Calm(model::Document* document, model::Random& random)
{
    const int percent = random.Chance(30) ? 0 : random.Between(30, 100);
    const auto calm = [&](std::vector<model::Node>& nodes)
    {
        for (model::Node& node : nodes)
        {
            if (random.Chance(percent))
            {
                node.conditions.resize(node.conditions.size() / 2);
            }
        }
    };
    for (std::vector<model::Node>& layer : document->layers)
    {
        calm(layer);
    }
    calm(document->globals);
}

} // namespace

Case MakeCase(unsigned long long seed, const std::string& without)
{
    Case made;
    made.document = model::MakeCase(seed).document;
    Drawer drawer(seed ^ 0x7477696eull, without);
    Calm(&made.document, drawer.random);
    Operation start;
    start.kind = kStart;
    made.operations.push_back(start);
    const int count = drawer.random.Between(20, 120);
    for (int i = 0; i < count; ++i)
    {
        made.operations.push_back(drawer.Draw(false));
    }
    return made;
}

} // namespace twin
