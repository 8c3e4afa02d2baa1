#include "support/fake_session.h"

#include "data/base/field_text.h"

#include <new>

namespace zov::testing {
namespace {

class FakeStream : public ResultStream {
 public:
    FakeStream(const FakeTable& table, Journal* journal, qsizetype failAfter, bool outOfMemory)
        : table_(table), journal_(journal), failAfter_(failAfter), outOfMemory_(outOfMemory) {}
    ~FakeStream() override { close(); }

    const std::vector<ColumnInfo>& columns() const override { return table_.columns; }

    qsizetype fetch(RowStore& rows, qsizetype maxRows) override {
        qsizetype count = 0;
        for (; count < maxRows && at_ < table_.rows.size(); ++count, ++at_) {
            if (at_ == failAfter_ && outOfMemory_) {
                append(rows.column(0), table_.rows[at_].section(u'|', 0, 0));
                throw std::bad_alloc();
            }
            if (at_ == failAfter_) {
                DbError error(ado_error::Unspecified, QStringLiteral("Connection broken"));
                error.connectionLost = true;
                throw error;
            }
            const QStringList cells = table_.rows[at_].split(u'|');
            for (int c = 0; c < rows.columnCount(); ++c) append(rows.column(c), cells[c]);
        }
        *journal_ += QStringLiteral("fetched %1").arg(count);
        return count;
    }
    bool nextResult() override { return false; }
    void close() override {
        if (!closed_) *journal_ += QStringLiteral("closed");
        closed_ = true;
    }

 private:
    static void append(ColumnCells& cells, const QString& text) {
        if (text == u"NULL") return cells.appendNull();
        if (cells.storage() == Storage::Text) return cells.appendText(text);
        if (cells.storage() == Storage::Ticks) {
            qint64 ticks = 0;
            qint16 offset = 0;
            const QByteArray ascii = text.toLatin1();
            parseIsoTicks(ascii.constData(), ascii.size(), ticks, offset);
            return cells.appendInteger(ticks);
        }
        if (cells.storage() == Storage::Float64) return cells.appendReal(text.toDouble());
        cells.appendInteger(text.toLongLong());
    }

    const FakeTable& table_;
    Journal* journal_;
    qsizetype failAfter_;
    bool outOfMemory_;
    qsizetype at_ = 0;
    bool closed_ = false;
};

}  // namespace

std::unique_ptr<ResultStream> FakeSession::execute(const CommandSpec& command) {
    *journal_ += QStringLiteral("execute ") + command.text;
    return std::make_unique<FakeStream>(table_, journal_, failAfterRows, outOfMemory);
}

}  // namespace zov::testing
