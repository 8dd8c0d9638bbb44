// VELL: data-driven hierarchical state machines.
// include/durm/DURMBaseLib.h: the vocabulary of the machine document, and the logger.
#pragma once

#include <durm/VocabularyTypes.h>

#include <string>

// `DURM_STATIC`: the library is linked statically, or its objects directly. `DURM_BUILDING`: the
// shared library itself is being built. Neither: a host uses the shared library.
#if defined(DURM_STATIC)
#define DURM_API
#elif defined(_WIN32) && defined(DURM_BUILDING)
#define DURM_API __declspec(dllexport)
#elif defined(_WIN32)
#define DURM_API __declspec(dllimport)
#else
#define DURM_API __attribute__((visibility("default")))
#endif

extern "C"
{
    /// Passes `text`, a line of log level `level`, to the callback of `SetLogCallBackBase`, on the
    /// calling thread; does nothing when none is set. `text` need only be valid during the call.
    DURM_API void LogImpl(int level, const char* text);

    /// Sets the callback of every later `LogImpl` and replaces the previous one; null removes it.
    /// May be called while other threads log: a line that is being logged may still go to the old
    /// callback, and several threads may be in a callback at once.
    DURM_API void SetLogCallBackBase(void (*callback)(int level, const char* text));
}

namespace DURMBaseLib
{
using ::LogImpl;
using ::SetLogCallBackBase;

// The returned texts live as long as the process. Arguments are compared case-sensitively. All
// functions may be called from any thread.

/// Gives the text of the member `type`, or null for a number that is not a member.
DURM_API const char* GetJsonName(__JSONTYPES__ type);

/// Gives the name of the parameter type `type`, or null when it has none.
DURM_API const char* GetParameterName(__ePARAMTYPE__ type);

/// Gives the number of the parameter type `name`, or 0 when it is null or there is no such name.
DURM_API int GetParameterName(const char* name);

/// The same as `GetParameterName` of a name, as the enumeration.
DURM_API __ePARAMTYPE__ GetParameterTypeByName(const char* name);

/// Gives the number of the builder `name`, or 0 when it is null or there is no such name. A text of
/// decimal digits that fits an int gives that number, so that a document can name a host's own
/// builder.
DURM_API int GetBuilderIndex(const char* name);

/// Gives the binding number of the input `name`, or 0 when it is null or there is no such name.
DURM_API int GetAssignName(const char* name);

/// Gives the name of the connector `type`, or null when it has none.
DURM_API const char* GetConnectorName(__CONNECTOR_TYPES__ type);

/// Gives the number of the operator `name`, or 0 when it is null or there is no such name.
DURM_API int GetEvaluationEnum(const char* name);

/// Gives the number of the machine type `name`, or 0 when it is null or there is no such name.
DURM_API __STATE_MACHINE_TYPES__ GetStateMachineTypeByName(const char* name);

/// Gives the CRC-32/ISO-HDLC of the bytes of `text`, which is the id of a parameter of that name.
DURM_API unsigned ConvertStringToCRC(std::string& text);
} // namespace DURMBaseLib
