// VELL: data-driven hierarchical state machines.
// include/vell/Factories.h: how a host makes a machine and hears its log.
#pragma once

#include <vell/Export.h>

#include <durm/DURMBaseLib.h>

namespace vell
{

class IHSM;

/// What SetLogCallBack takes: the level of a line (3 error, 4 warning, 6 info, 9 none) and its text
/// with tag and newline, valid during the call only.
using LogCallBack = void (*)(int level, const char* text);

extern "C"
{
    /// Makes a machine from the document in the file `filePath`. `auxiliaryName` is never read. The
    /// object is returned also when the document could not be read: the log tells, and IHSM::Init
    /// returns 0. The host deletes it after IHSM::Uninit and IHSM::Destroy.
    VELL_API IHSM* CreateHSM(const char* filePath, const char* auxiliaryName);

    /// Makes a machine from the document that `jsonText` is, else like `CreateHSM`.
    VELL_API IHSM* CreateHSMJson(const char* jsonText);

    /// Writes "Callback being setup" to standard output and makes `callback` hear every line,
    /// besides standard error; null for nobody. One callback serves the process.
    VELL_API void SetLogCallBack(LogCallBack callback);
}

using ::DURMBaseLib::LogImpl;
using ::DURMBaseLib::SetLogCallBackBase;

} // namespace vell

using vell::CreateHSM;
using vell::CreateHSMJson;
using vell::SetLogCallBack;
