#include "scripting/type_names.h"

#include "data/sql_names.h"

#include <QHash>

namespace zov {
namespace {

enum class Size { Bytes, Letters, PrecisionAndScale, Scale, Precision };

const QHash<QString, Size>& sizes() {
    static const QHash<QString, Size> table = {
        {QStringLiteral("varchar"), Size::Bytes},
        {QStringLiteral("char"), Size::Bytes},
        {QStringLiteral("varbinary"), Size::Bytes},
        {QStringLiteral("binary"), Size::Bytes},
        {QStringLiteral("nvarchar"), Size::Letters},
        {QStringLiteral("nchar"), Size::Letters},
        {QStringLiteral("decimal"), Size::PrecisionAndScale},
        {QStringLiteral("numeric"), Size::PrecisionAndScale},
        {QStringLiteral("datetime2"), Size::Scale},
        {QStringLiteral("datetimeoffset"), Size::Scale},
        {QStringLiteral("time"), Size::Scale},
        {QStringLiteral("float"), Size::Precision},
    };
    return table;
}

}  // namespace

QString typeInStatement(const TypeInStatement& type) {
    if (type.isUserDefined) return quotedName(type.schema, type.name);
    const auto size = sizes().constFind(type.name);
    if (size == sizes().constEnd()) return type.name;
    const auto sized = [&](int number) {
        return QStringLiteral("%1(%2)").arg(type.name).arg(number);
    };
    switch (*size) {
        case Size::Bytes:
        case Size::Letters:
            if (type.maxLength < 0) return type.name + QStringLiteral("(max)");
            return sized(*size == Size::Letters ? type.maxLength / 2 : type.maxLength);
        case Size::PrecisionAndScale:
            return QStringLiteral("%1(%2,%3)").arg(type.name).arg(type.precision).arg(type.scale);
        case Size::Scale:
            return sized(type.scale);
        case Size::Precision:
            return sized(type.precision);
    }
    return type.name;
}

bool isRowVersionType(const TypeInStatement& type) {
    return !type.isUserDefined && (type.name == u"timestamp" || type.name == u"rowversion");
}

}  // namespace zov
