// Scripts as far as they are only read: encodings, batches, tokens, queries.
#include "data/base/db_error.h"
#include "data/local/query_parser.h"
#include "data/local/tsql_lexer.h"
#include "data/script_batches.h"
#include "fuzz_support.h"
#include "util/text_decode.h"

using namespace zov;
using fuzz::require;

namespace {

void parseAt(std::span<const local::Token> tokens, qsizetype begin) {
    const auto readType = [](std::span<const local::Token> all, qsizetype at, qsizetype& end) {
        end = std::min(at + 1, qsizetype(all.size()));
        return ColumnInfo();
    };
    const auto attempt = [&](auto parse) {
        local::QueryParser parser(tokens, true, readType, begin);
        try {
            parse(parser);
        } catch (const DbError& error) {
            require(!error.description.isEmpty(), "an error says something");
        }
        require(parser.position() >= begin && parser.position() <= qsizetype(tokens.size()),
                "the parser stays in its statement");
    };
    const local::Token& first = tokens[size_t(begin)];
    if (first.is("INSERT")) attempt([](auto& parser) { parser.parseInsert(); });
    if (first.is("UPDATE")) attempt([](auto& parser) { parser.parseUpdate(); });
    if (first.is("DELETE")) attempt([](auto& parser) { parser.parseDelete(); });
    if (first.is("SELECT") || first.is("WITH")) attempt([](auto& parser) { parser.parseSelect(); });
    if (begin == 0 || first.is("IF")) attempt([](auto& parser) { parser.parseCondition(); });
}

void readBatch(const ScriptBatch& batch) {
    for (const bool quoted : {true, false}) {
        try {
            const std::vector<local::Token> tokens = local::tokenize(batch.text, quoted);
            require(tokens.back().kind == local::TokenKind::End, "the last token is the end");
            qsizetype behind = 0;
            for (const local::Token& token : tokens) {
                require(token.position >= behind && token.end() <= batch.text.size(),
                        "tokens stand in the text, in order");
                behind = token.end();
            }
            // Without the end, as statements are given to it.
            const std::span<const local::Token> statement(tokens.data(), tokens.size() - 1);
            // From each token on; of many, from some, since nested ones are read from each anew.
            const qsizetype step = 1 + qsizetype(statement.size()) / 256;
            for (qsizetype at = 0; at < qsizetype(statement.size()); at += step)
                parseAt(statement, at);
        } catch (const DbError& error) {
            require(error.line >= 1, "an error of the text has a line");
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const DecodedText decoded = decodeText(fuzz::bytesOf(data, size));
    int line = 0;
    for (const ScriptBatch& batch : splitBatches(decoded.text)) {
        require(batch.firstLine > line, "batches follow each other");
        line = batch.firstLine;
        require(batch.repeat >= 0 && decoded.text.contains(batch.text),
                "a batch is the script's text");
        for (const UseStatement& use : useStatements(batch.text))
            require(use.position >= 0 && use.position < batch.text.size(),
                    "a USE stands in its batch");
        createdDatabases(batch.text);
        readBatch(batch);
    }
    return 0;
}
