// Which statements an image can answer as its server would: selects over views and columns that it
// holds, with functions that it can work out. Everything else is the server's to answer.
#pragma once

#include <QHash>
#include <QString>

#include <mutex>

namespace zov::image {

class HeldStatements {
 public:
    /// Who answers what the image doesn't. With nobody behind it, it answers for the server as
    /// well: its version and its databases, of which there is one.
    enum class Behind { Server, Nobody };
    explicit HeldStatements(Behind behind = Behind::Server) : behind_(behind) {}

    /// From any thread.
    bool contain(const QString& statement);
    /// Whether the statement reads views of the catalogue alone, held or not.
    static bool readCatalogue(const QString& statement);

 private:
    const Behind behind_;
    std::mutex guard_;
    QHash<QString, bool> known_;  ///< by what a statement is without its literals
};

}  // namespace zov::image
