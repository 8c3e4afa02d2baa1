// Splits a command line into switches with values: "/Switch value /Other".
#pragma once

#include <QString>

#include <vector>

namespace zov {

class CCommandArgs {
 public:
    QString TestString;  ///< the whole line
    QString Delim;       ///< what starts a switch

    /// Fills the pairs anew. With an empty `Delim` or `TestString` nothing happens. Text before the
    /// first switch is dropped; a switch without a value has its own name for one.
    void Parse();

    qint16 Count() const { return qint16(pairs_.size()); }
    /// Key and value of pair `Index`, from 1; empty when there is none.
    QString Key(int Index) const;
    QString Value(int Index) const;
    /// A text that reads as a number is a pair's index; any other is looked up among the keys in
    /// any case, and the first match counts. Empty when there is none.
    QString Item(const QString& KeyOrIndex) const;

 private:
    struct Pair {
        QString key;
        QString value;
    };
    std::vector<Pair> pairs_;
};

}  // namespace zov
