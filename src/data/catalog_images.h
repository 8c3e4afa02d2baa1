// Runs over many objects read the catalogues of their databases whole, in a number of statements
// that doesn't depend on how many objects there are, and are then answered from what was read
// (data/image). A run asks for that here; what answers its statements is decided by
// `Connection::Open`, and nobody above knows the difference.
#pragma once

#include "data/catalog_reading.h"

#include <QStringList>

namespace zov {

class CatalogImages {
 public:
    struct Place {
        ServerInfo server;
        QString database;
    };

    /// Reads, all databases at the same time, unless the setting UseCatalogImage is off; a database
    /// that no image can be made of, or that can't be read, is left to be asked directly. When the
    /// user gives up the stop flag is set.
    CatalogImages(const std::vector<Place>& places, const ReadingProgress& progress);
    /// From now on the servers answer themselves.
    ~CatalogImages();
    CatalogImages(const CatalogImages&) = delete;
    CatalogImages& operator=(const CatalogImages&) = delete;

    /// A sentence for each database that is asked directly though it shouldn't be.
    const QStringList& notes() const { return notes_; }
    /// Some database is answered from an image: connections that were opened before aren't.
    bool areInUse() const { return !connectionStrings_.isEmpty(); }

 private:
    QStringList notes_;
    QStringList connectionStrings_;  ///< those that this object has put in
};

}  // namespace zov
