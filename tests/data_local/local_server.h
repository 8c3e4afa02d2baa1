// An embedded server in a folder of its own, for tests: batches in, rows as lines of text out.
#pragma once

#include "data/base/field_text.h"
#include "data/local/local_provider.h"

#include <QTemporaryDir>

#include <string>

namespace zov::local {

class LocalServer {
 public:
    /// `version`: empty for the default one.
    explicit LocalServer(const QString& version = {}) {
        source_ = QStringLiteral("local:") + folder_.filePath(QStringLiteral("server"));
        createSource_ =
            version.isEmpty() ? source_ : source_ + QStringLiteral("?version=") + version;
        connection_ = open(QStringLiteral("Test"), true);
        run(QStringLiteral("print ''"));  // others see a new database from here on
    }

    const QString& source() const { return source_; }

    std::unique_ptr<ProviderConnection> open(const QString& database, bool create = false) const {
        ConnectionSpec spec;
        spec.dataSource = create ? createSource_ : source_;
        spec.database = database;
        return localProvider().open(spec, create);
    }
    ProviderConnection& connection() { return *connection_; }

    void run(const QString& batch) { rows(*connection_, batch); }

    /// The first result with columns: a line of names, then a line per row, cells joined by "|".
    std::string rows(const QString& batch) { return rows(*connection_, batch); }
    static std::string rows(ProviderConnection& connection, const QString& batch) {
        CommandSpec command;
        command.text = batch;
        const auto stream = connection.execute(command);
        QString text;
        do {
            if (stream->columns().empty()) continue;
            QStringList names;
            for (const ColumnInfo& column : stream->columns()) names << column.name;
            text += names.join(u'|') + u'\n';
            RowStore store(stream->columns());
            while (stream->fetch(store, 100) > 0) {
            }
            for (qsizetype row = 0; row < store.rowCount(); ++row) {
                QStringList cells;
                for (int column = 0; column < store.columnCount(); ++column) {
                    const CellView cell = store.cell(row, column);
                    cells << (cell.isNull ? QStringLiteral("NULL") : cellText(cell));
                }
                text += cells.join(u'|') + u'\n';
            }
        } while (stream->nextResult());
        stream->close();
        return text.toStdString();
    }

    /// The first cell of the first row; "(no row)" without one.
    std::string value(const QString& select) {
        const QString text = QString::fromStdString(rows(select));
        const QStringList lines = text.split(u'\n');
        return lines.size() > 2 ? lines.mid(1, lines.size() - 2).join(u'\n').toStdString()
                                : "(no row)";
    }

    /// "number: text" of the failure, "no error" without one.
    std::string error(const QString& batch) {
        try {
            run(batch);
        } catch (const DbError& error) {
            return QStringLiteral("%1: %2").arg(error.native).arg(error.description).toStdString();
        }
        return "no error";
    }

    /// The columns of a result as "name type(size) ...": decimals with precision and scale.
    std::string types(const QString& select) {
        CommandSpec command;
        command.text = select;
        const auto stream = connection_->execute(command);
        QStringList all;
        for (const ColumnInfo& column : stream->columns()) {
            QString text = sqlTypeName(column.type);
            if (column.type == SqlType::Decimal || column.type == SqlType::Numeric)
                text += QStringLiteral("(%1,%2)").arg(column.precision).arg(column.scale);
            else if (column.size > 0 && !(column.type == SqlType::RowVersion))
                text += QStringLiteral("(%1)").arg(column.size);
            else if (column.size < 0 &&
                     (column.type == SqlType::VarChar || column.type == SqlType::NVarChar ||
                      column.type == SqlType::VarBinary))
                text += QStringLiteral("(max)");
            all << text;
        }
        return all.join(u' ').toStdString();
    }

 private:
    QTemporaryDir folder_;
    QString source_, createSource_;
    std::unique_ptr<ProviderConnection> connection_;
};

}  // namespace zov::local
