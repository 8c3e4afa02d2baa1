#include "data/base/sql_type.h"

namespace zov {
namespace {

struct TypeFacts {
    const char* name;
    int ado;
    Storage storage;
};

// In the order of SqlType. ADO numbers as SQLOLEDB reports them.
constexpr TypeFacts facts[] = {
    {"bit", 11, Storage::Int8},
    {"tinyint", 17, Storage::Int8},
    {"smallint", 2, Storage::Int16},
    {"int", 3, Storage::Int32},
    {"bigint", 20, Storage::Int64},
    {"decimal", 131, Storage::Scaled64},
    {"numeric", 131, Storage::Scaled64},
    {"money", 6, Storage::Scaled64},
    {"smallmoney", 6, Storage::Scaled64},
    {"real", 4, Storage::Float32},
    {"float", 5, Storage::Float64},
    {"date", 133, Storage::Ticks},
    {"time", 145, Storage::Ticks},
    {"smalldatetime", 135, Storage::Ticks},
    {"datetime", 135, Storage::Ticks},
    {"datetime2", 135, Storage::Ticks},
    {"datetimeoffset", 146, Storage::TicksOffset},
    {"char", 129, Storage::Text},
    {"varchar", 200, Storage::Text},
    {"text", 201, Storage::Text},
    {"nchar", 130, Storage::Text},
    {"nvarchar", 202, Storage::Text},
    {"ntext", 203, Storage::Text},
    {"xml", 141, Storage::Text},
    {"binary", 128, Storage::Bytes},
    {"varbinary", 204, Storage::Bytes},
    {"image", 205, Storage::Bytes},
    {"timestamp", 128, Storage::Bytes},
    {"uniqueidentifier", 72, Storage::Guid},
    {"sql_variant", 12, Storage::Text},
};

const TypeFacts& factsOf(SqlType type) {
    return facts[size_t(type)];
}

}  // namespace

Storage storageOf(const ColumnInfo& column) {
    // Eighteen digits are what a 64-bit integer always holds.
    if ((column.type == SqlType::Decimal || column.type == SqlType::Numeric) &&
        column.precision > 18)
        return Storage::Text;
    return factsOf(column.type).storage;
}

int adoTypeOf(SqlType type) {
    return factsOf(type).ado;
}

QString sqlTypeName(SqlType type) {
    return QLatin1String(factsOf(type).name);
}

bool isTextType(SqlType type) {
    return type >= SqlType::Char && type <= SqlType::Xml;
}
bool isNumericType(SqlType type) {
    return type <= SqlType::Float;
}
bool isDateTimeType(SqlType type) {
    return type >= SqlType::Date && type <= SqlType::DateTimeOffset;
}

}  // namespace zov
