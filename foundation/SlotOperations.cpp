// VELL: data-driven hierarchical state machines.
// foundation/SlotOperations.cpp: what the table library offers beside the operations of its tables.
#include "foundation/SlotOperations.h"

#if !defined(_WIN32)
// Its address is null where the table library does not have it.
#pragma weak TesselGetSlotOperations
#elif !defined(TESSEL_STATIC)
#include <windows.h>
#endif

namespace vell
{
namespace
{

template <class... Arguments>
int Refuse(Arguments...)
{
    return 0;
}

void DoNothing(Tessel::KVSlot*)
{
}

int FindNoBranch(Tessel::KVBranch* branch, Tessel::KVTable parent, const char*)
{
    branch->parent = parent;
    branch->table = Tessel::KVTable();
    return 0;
}

/// Gives the function of the table library, or null.
decltype(&TesselGetSlotOperations) FindFunction()
{
#if defined(_WIN32) && !defined(TESSEL_STATIC)
    const HMODULE library = GetModuleHandleA("TesselX64.dll");
    const FARPROC function =
        library == nullptr ? nullptr : GetProcAddress(library, "TesselGetSlotOperations");
    return reinterpret_cast<decltype(&TesselGetSlotOperations)>(reinterpret_cast<void*>(function));
#else
    return &TesselGetSlotOperations;
#endif
}

struct Asking
{
    Asking()
    {
        const auto function = FindFunction();
        const Tessel::SlotOperations* offered = function == nullptr ? nullptr : function();
        if (offered != nullptr)
        {
            slotOperations = *offered;
        }
    }
};

} // namespace

// A machine may be created before the question, by a static object of a host that links this
// library statically.
Tessel::SlotOperations slotOperations{Refuse, DoNothing, FindNoBranch, Refuse, Refuse, Refuse};

static const Asking kAsking;

} // namespace vell
