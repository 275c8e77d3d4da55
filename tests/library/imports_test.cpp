// What liborva takes of libkett: the operations that it may rely on wherever it runs, and nothing else.
#include "names.h"
#include "support/command.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

const Names operations = {
    "KTCORE_Initialize",
    "KTCORE_Finalize",
    "KTVERSION_Register",
    "KTDEBUG_Log",
    "KTDEBUG_Warning",
    "KTDEBUG_Error",
    "KTDEBUG_TerminalError",
    "KTENV_GetEnvValue",
    "KTIO_FileExists",
    "KTIO_Open",
    "KTIO_FileSize",
    "KTIO_ReadData",
    "KTIO_WriteData",
    "KTIO_CloseFile",
    "KTMEM_CreateMemDescrEx",
    "KTMEM_NewEx",
    "KTMEM_NewAligned",
    "KTMEM_NewFloatVector",
    "KTMEM_DisposeMemDescr",
    "KTMEM_DisplayMemDescr",
    "KTSETTINGS_GetBoolEx",
    "KTSETTINGS_GetIntEx",
    "KTSETTINGS_SetDefaultEx",
    "KTSTRING_GetStringValueFromString",
    "KTSTRING_GetIntegerValueFromString",
    "KTSTRING_GetFloatValueFromString",
    "KTSTRING_GetBooleanValueFromString",
    "KTSTRING_GetVectorSizeFromString",
    "KTSTRING_GetDoubleVectorValuesFromString",
    "KTSTRING_GetMatrixSizeFromString",
    "KTSTRING_GetDoubleMatrixValuesFromString",
    "KTSTRING_Strlwr",
    "KTSTRING_CompareInsensitiveN",
    "KTTHREAD_AddThread",
    "KTTHREAD_JoinThreadEx",
    "KTUTILS_sleep_msec",
    "KTUTILS_ConvertIEEEFloatToWord16",
    "KTUTILS_ConvertWord16ToIEEEFloat",
    "FVectorMulScalar",
    "FVectorSumOfSquares",
    "FVectorAbsMax",
    "FVectorArgAbsMax",
    "FilterBlockFloat",
    "MutexInit",
    "MutexLock",
    "MutexUnlock",
    "MutexDestroy",
};

// The names that liborva wants from libkett: those with the version that each of libkett's names carries.
Names imported()
{
    static const std::string version = "@KETT_1.0";
    Names names;
    for (const auto &line : support::linesOf("nm -D --undefined-only --with-symbol-versions " LIBORVA))
        if (line.ends_with(version))
            names.insert(line.substr(line.rfind(' ') + 1, line.rfind('@') - line.rfind(' ') - 1));
    return names;
}

} // namespace

TEST(Imports, AreTheFortySevenOperationsOfLibkett)
{
    EXPECT_EQ(operations.size(), 47u);
    EXPECT_EQ(missing(operations, imported()), Names{})
        << "taken, but not among those that every libkett has";
    EXPECT_EQ(missing(imported(), operations), Names{}) << "not taken any more";
}
