// The options screen: a tree of pages, one control each, over the settings. The
// controls are data; a widget lays them out.
#pragma once

#include "shell/screen.h"

#include <QString>

#include <vector>

namespace zov {

/// A control with the heading above it.
struct OptionsControl {
    QString name;
    QString lblHeader;
};

/// One page of the tree.
struct OptionsPage {
    QString node;     ///< its name in the tree and in its shortcut caption
    QString parent;   ///< "" for a root
    QString lblInfo;  ///< the help text; paragraphs parted by two line breaks
    std::vector<OptionsControl> controls;
};

class frmOptions : public Screen {
 public:
    QString screenName() const override { return QStringLiteral("frmOptions"); }
    QString caption() const override { return QStringLiteral("Options"); }

    /// Modal; true when the settings were saved.
    bool ShowUp();

    static const std::vector<OptionsPage>& pages();
    /// Caption of a check box or an option button by its control's name.
    static QString captionOf(const QString& control);

    // The controls' values.
    struct Values {
        bool chkAutoConnect = false;
        bool chkPreserveDbSel = true;
        bool chkAutoSelTargetObj = false;
        bool chkShowOwners = false;
        bool chkFilterOfflineDbs = false;
        qint32 txtTimeout = 30;
        bool chkIgnoreColSeq = true;
        bool chkAnalyzeConstraints = false;
        bool chkAutoSaveSchemas = false;
        bool chkIgnoreSysObjects = true;
        bool chkUseCatalogImage = true;
        bool chkIgnoreIndexes = false;
        bool chkIgnoreComments = true;
        bool chkIgnoreWhitespaces = true;
        bool chkCaseSensitive = true;
        bool chkDataComp = true;
        qint32 txtMaxRows = 500;
        qint32 txtCacheSize = 5;
        bool serverSide = true;  ///< optCurLoc
        bool chkDataCaseSensitive = true;
        bool operator==(const Values&) const = default;
    };
    Values values;
    /// The check box of this name; null for a control that is none.
    static bool Values::*checkBox(const QString& control);

    void LoadData();
    void ValidateData();
    void SaveData();
    void cmdSave();
    void cmdCancel();
    /// The user leaves otherwise; false keeps the screen open.
    bool Form_QueryUnload();

 private:
    Values loaded_;
    bool saved_ = false;
};

}  // namespace zov
