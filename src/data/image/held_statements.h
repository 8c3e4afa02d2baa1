// Which statements an image can answer as its server would: selects over views and columns that it
// holds, with functions that it can work out. Everything else is the server's to answer.
#pragma once

#include <QHash>
#include <QString>

#include <mutex>

namespace zov::image {

class HeldStatements {
 public:
    /// From any thread.
    bool contain(const QString& statement);

 private:
    std::mutex guard_;
    QHash<QString, bool> known_;  ///< by what a statement is without its literals
};

}  // namespace zov::image
