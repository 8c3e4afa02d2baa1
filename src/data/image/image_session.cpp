#include "data/image/image_session.h"

#include <mutex>

namespace zov::image {
namespace {

/// Whether the server is worth asking after the image failed.
bool serverMayKnow(const DbError& error) {
    return error.number != ado_error::Cancelled && error.number != ado_error::Timeout;
}

class ImageSession : public ProviderConnection {
 public:
    ImageSession(std::shared_ptr<CatalogImage> image, OpenServer openServer)
        : image_(std::move(image)), openServer_(std::move(openServer)), own_(image_->connect()) {}

    ~ImageSession() override {
        if (own_) image_->keep(std::move(own_));
    }

    std::unique_ptr<ResultStream> execute(const CommandSpec& command) override {
        if (image_->holds(command)) {
            try {
                return own_->execute(command);
            } catch (const DbError& error) {
                if (!serverMayKnow(error)) throw;
            }
        }
        return server()->execute(command);
    }
    void cancel() override {
        if (own_) own_->cancel();
        if (const std::shared_ptr<ProviderConnection> asked = askedServer()) asked->cancel();
    }
    std::vector<ServerMessage> takeMessages() override {
        std::vector<ServerMessage> messages;
        if (own_) messages = own_->takeMessages();
        if (const std::shared_ptr<ProviderConnection> asked = askedServer())
            std::ranges::move(asked->takeMessages(), std::back_inserter(messages));
        return messages;
    }
    void close() override {
        if (own_) image_->keep(std::move(own_));
        if (const std::shared_ptr<ProviderConnection> asked = askedServer()) asked->close();
    }

 private:
    std::shared_ptr<ProviderConnection> askedServer() {
        const std::lock_guard lock(guard_);
        return server_;
    }
    std::shared_ptr<ProviderConnection> server() {
        if (const std::shared_ptr<ProviderConnection> asked = askedServer()) return asked;
        std::shared_ptr<ProviderConnection> opened = openServer_();
        const std::lock_guard lock(guard_);
        return server_ = std::move(opened);
    }

    std::shared_ptr<CatalogImage> image_;  // outlives its session
    OpenServer openServer_;
    std::unique_ptr<ProviderConnection> own_;
    std::mutex guard_;
    std::shared_ptr<ProviderConnection> server_;
};

}  // namespace

std::unique_ptr<ProviderConnection> sessionOver(std::shared_ptr<CatalogImage> image,
                                                OpenServer openServer) {
    return std::make_unique<ImageSession>(std::move(image), std::move(openServer));
}

}  // namespace zov::image
