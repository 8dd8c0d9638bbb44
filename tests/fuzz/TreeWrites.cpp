// VELL: data-driven hierarchical state machines.
// tests/fuzz/TreeWrites.cpp: what a tool may do to a machine's tree.
#include "tests/fuzz/TreeWrites.h"

#include "tests/fuzz/Bytes.h"

#include <string>

namespace vell::fuzz
{
namespace
{

/// Goes down from `root` as the bytes say, to a table that is there.
Tessel::KVTable PickTable(Tessel::KVTable root, Bytes& bytes)
{
    Tessel::KVTable table = root;
    for (unsigned int depth = bytes.Below(6); depth != 0; --depth)
    {
        const unsigned int count = table->GetKeyCount();
        const char* key = count == 0 ? nullptr : table->GetKeyAt(bytes.Byte() % count);
        const Tessel::KVTable below = key == nullptr ? Tessel::KVTable() : table->GetTable(key);
        if (!below)
        {
            break;
        }
        table = below;
    }
    return table;
}

std::string PickKey(Tessel::KVTable table, Bytes& bytes)
{
    const unsigned int choice = bytes.Byte();
    const unsigned int count = table->GetKeyCount();
    const char* there = count == 0 ? nullptr : table->GetKeyAt(choice % count);
    if (choice < 200 && there != nullptr)
    {
        return there;
    }
    return choice < 230 ? "value" : bytes.Text(12);
}

void WriteValue(Tessel::KVTable table, const std::string& key, Bytes& bytes)
{
    const Tessel::Float4 floats{bytes.Float(), bytes.Float(), 1.0f, -1.0f};
    const Tessel::Float3 three{floats.x, floats.y, floats.z};
    const Tessel::Float2 two{floats.x, floats.y};
    switch (bytes.Below(7))
    {
    case 0:
        table->SetInt(key.c_str(), static_cast<int>(bytes.Word()), 1);
        break;
    case 1:
        table->SetUInt(key.c_str(), bytes.Word(), 1);
        break;
    case 2:
        table->SetFloat(key.c_str(), floats.x, 1);
        break;
    case 3:
        table->SetString(key.c_str(), bytes.Text(200).c_str(), 0);
        break;
    case 4:
        table->SetFloat2(key.c_str(), &two, 1);
        break;
    case 5:
        table->SetFloat3(key.c_str(), &three, 1);
        break;
    default:
        table->SetFloat4(key.c_str(), &floats, 1);
        break;
    }
}

} // namespace

void WriteIntoTree(Tessel::KVTable root, Bytes& bytes)
{
    const Tessel::KVTable table = PickTable(root, bytes);
    const unsigned int choice = bytes.Byte();
    const std::string key = PickKey(table, bytes);
    if (choice < 200)
    {
        WriteValue(table, key, bytes);
    }
    else if (choice < 215)
    {
        table->PushUInt(bytes.Word(), 1);
    }
    else if (choice < 230)
    {
        table->RemoveAt(bytes.Below(8), 1);
    }
    else if (choice < 240)
    {
        table->AddTable(key.c_str(), 1);
    }
    else if (choice < 248)
    {
        const Tessel::KVTable other = PickTable(root, bytes);
        table->AttachTable(key.c_str(), other, 1);
    }
    else
    {
        Tessel::CloseTable(table);
    }
}

} // namespace vell::fuzz
