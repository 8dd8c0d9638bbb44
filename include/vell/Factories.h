// VELL: data-driven hierarchical state machines.
// include/vell/Factories.h: how a host creates a machine and receives its log.
#pragma once

#include <durm/DURMBaseLib.h>
#include <vell/Export.h>

namespace vell
{

class IHSM;

/// Called for each log line with its level (3 error, 4 warning, 6 information, 9 banner) and its
/// text with tag and newline, valid during the call only.
using LogCallBack = void (*)(int level, const char* text);

extern "C"
{
    /// Creates a machine from the document in the file `filePath`. `auxiliaryName` is never read.
    /// Never returns null: if the document cannot be read, the log says so and IHSM::Init returns
    /// 0. The host deletes the machine after IHSM::Uninit and IHSM::Destroy.
    VELL_API IHSM* CreateHSM(const char* filePath, const char* auxiliaryName);

    /// Creates a machine from the document in the string `jsonText`, otherwise like `CreateHSM`.
    VELL_API IHSM* CreateHSMJson(const char* jsonText);

    /// Writes "Callback being setup" to standard output and sets the callback that gets every log
    /// line, in addition to standard error; null for none. There is one callback per process.
    VELL_API void SetLogCallBack(LogCallBack callback);
}

using ::DURMBaseLib::LogImpl;
using ::DURMBaseLib::SetLogCallBackBase;

} // namespace vell

using vell::CreateHSM;
using vell::CreateHSMJson;
using vell::SetLogCallBack;
