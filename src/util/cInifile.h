// INI files as the platform's private-profile calls give them: the class to use
// for lists and for anything longer than one short value. Each call reads or
// rewrites the file whole; a rewrite is atomic and keeps comments and order.
#pragma once

#include <QString>
#include <QStringList>

#include <functional>

namespace zov {

class IniDocument;

/// A window as far as its place on the screen goes, in twips.
class PlacedForm {
 public:
    virtual ~PlacedForm() = default;
    virtual int WindowState() const = 0;  ///< 0 normal, 1 minimised, 2 maximised
    virtual void setWindowState(int state) = 0;
    virtual qint32 Left() const = 0;
    virtual qint32 Top() const = 0;
    virtual qint32 Width() const = 0;
    virtual qint32 Height() const = 0;
    virtual void Move(qint32 Left, qint32 Top, qint32 Width, qint32 Height) = 0;
};

class cInifile {
 public:
    cInifile() = default;
    explicit cInifile(const QString& Path) : Path(Path) {}

    QString Path;
    QString Section;
    QString Key;
    QString Default;
    /// Whether section names that differ in letter case only are one section or two.
    Qt::CaseSensitivity SectionCase = Qt::CaseInsensitive;

    /// The key's value, `Default` when there is none; its first 255 characters.
    QString Value();
    /// Writes the value without its NULs.
    void setValue(const QString& value);

    qint32 LastReturnCode() const { return lastReturnCode_; }
    /// LastReturnCode isn't 0.
    bool Success() const { return lastReturnCode_ != 0; }
    /// Why the last write failed, path and reason; empty after a success.
    const QString& lastError() const { return lastError_; }

    void DeleteKey();
    void DeleteSection();

    /// The section's keys, each with a NUL behind it; cut at 8192 characters.
    QString INISection();
    /// Replaces the section by entries "key=value", separated by NULs.
    void setINISection(const QString& entries);
    /// The file's sections, each with a NUL behind it; cut at 8192 characters.
    QString Sections();

    /// The keys of the current section, the sections of the file; elements from 0.
    QStringList EnumerateCurrentSection();
    QStringList EnumerateAllSections();

    /// Writes the form's place into the current section; nothing when the form is minimised.
    void SaveFormPosition(const PlacedForm& Form);
    /// Moves the form to the stored place; a place that isn't stored leaves it where it is.
    void LoadFormPosition(PlacedForm& Form);

    /// The text as a 32-bit number, `Default` when it is none or doesn't fit.
    static qint32 CLngDefault(const QString& Text, qint32 Default);

    /// Several changes of the file as one: all of them are written, or none. `edit` runs under the
    /// file's lock.
    void change(const std::function<void(IniDocument&)>& edit);
    /// The file, read whole, without the limits of the calls above; lastError() tells a failure.
    IniDocument read();

 private:
    qint32 lastReturnCode_ = 0;
    QString lastError_;
};

}  // namespace zov
