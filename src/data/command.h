// ADO's Command and Parameter over a provider.
#pragma once

#include "data/base/provider.h"

#include <QString>

#include <memory>
#include <vector>

namespace zov {

class Connection;

struct Parameter {
    QString Name;
    QVariant Value;
};

inline constexpr int adCmdText = 1;
inline constexpr int adCmdStoredProc = 4;
inline constexpr int adInteger = 3;
inline constexpr int adDouble = 5;
inline constexpr int adDate = 7;
inline constexpr int adBoolean = 11;
inline constexpr int adVarWChar = 202;
inline constexpr int adParamInput = 1;
inline constexpr int adParamInputOutput = 3;
inline constexpr int adParamReturnValue = 4;

struct Command {
    std::shared_ptr<Connection> ActiveConnection;
    QString CommandText;
    int CommandType = adCmdText;
    qint32 CommandTimeout = 30;  ///< seconds, 0 without limit
    std::vector<CommandParameter> Parameters;
};

/// What a finished command hands back beside its rows.
struct CommandResult {
    qint32 returnValue = 0;
    std::vector<QVariant> outputs;  ///< one per parameter, invalid for input ones
};

}  // namespace zov
