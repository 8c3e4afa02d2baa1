// A server as a login meets it that may not see everything: rows are missing from its catalogue
// views without an error, and only who asks HAS_PERMS_BY_NAME is told so. What the login sees is
// another server's databases, of the same names.
#pragma once

#include "data/base/provider.h"
#include "support/tds_endpoint/scripted_provider.h"

namespace zov::test {

class LimitedLogin : public Provider {
 public:
    explicit LimitedLogin(Provider& server) : server_(server) {
        ScriptedResult no;
        no.columns.resize(1);
        no.columns[0].type = SqlType::Int;
        no.rowCount = 1;
        no.fill = [](RowStore& rows, qint64) { rows.column(0).appendInteger(0); };
        ScriptedAnswer answer;
        answer.results.push_back(no);
        refusal_.otherwise = [answer](const CommandSpec&) { return answer; };
    }

    std::unique_ptr<ProviderConnection> open(const ConnectionSpec& spec, bool create) override {
        return std::make_unique<Session>(server_.open(spec, create), refusal_.open(spec, false));
    }

 private:
    class Session : public ProviderConnection {
     public:
        Session(std::unique_ptr<ProviderConnection> seen,
                std::unique_ptr<ProviderConnection> refusal)
            : seen_(std::move(seen)), refusal_(std::move(refusal)) {}
        std::unique_ptr<ResultStream> execute(const CommandSpec& command) override {
            const bool asked = command.text.contains(QStringLiteral("HAS_PERMS_BY_NAME"));
            return (asked ? refusal_ : seen_)->execute(command);
        }
        void cancel() override { seen_->cancel(); }
        std::vector<ServerMessage> takeMessages() override { return seen_->takeMessages(); }
        void close() override { seen_->close(); }

     private:
        std::unique_ptr<ProviderConnection> seen_;
        std::unique_ptr<ProviderConnection> refusal_;
    };

    Provider& server_;
    ScriptedProvider refusal_;
};

}  // namespace zov::test
