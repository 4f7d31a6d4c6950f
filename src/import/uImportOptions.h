// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

#include <memory>
#include <span>
#include <variant>

namespace Kestrune {

/// What a source is told beside its input. Made on the main thread, where the settings and the language belong; pages
/// of the wizard and the command line fill it, and the worker gets a copy.
class TImportOptions {
public:
    virtual ~TImportOptions() = default;

    virtual std::unique_ptr<TImportOptions> Clone() const = 0;
    /// The options that have a name and a value in text form.
    virtual QStringList Names() const { return {}; }
    virtual QString Get(const QString& name) const;
    /// False for a name that there is not and for a text that is no value of it; nothing is changed then.
    virtual bool Set(const QString& name, const QString& value);
    /// True when an extra page of the wizard has what the source needs of it.
    virtual bool IsComplete(const QString& page) const;

protected:
    TImportOptions() = default;
    TImportOptions(const TImportOptions&) = default;
    TImportOptions& operator=(const TImportOptions&) = default;
};

/// A field of options by its name. Booleans are written "yes" and "no".
template <typename T>
struct TOptionRow {
    QString Name;
    std::variant<bool T::*, int T::*, QString T::*> Field;
};

// One field in text form.
QString OptionText(bool value);
QString OptionText(int value);
QString OptionText(const QString& value);
bool ReadOption(const QString& text, bool& value);
bool ReadOption(const QString& text, int& value);
bool ReadOption(const QString& text, QString& value);

/// Options whose fields are told by a table: `static std::span<const TOptionRow<T>> T::Rows()`.
template <typename T>
class TImportOptionsOf : public TImportOptions {
public:
    std::unique_ptr<TImportOptions> Clone() const override { return std::make_unique<T>(Self()); }
    QStringList Names() const override
    {
        QStringList names;
        for (const TOptionRow<T>& row : T::Rows())
            names += row.Name;
        return names;
    }
    QString Get(const QString& name) const override
    {
        const TOptionRow<T>* row = Find(name);
        return row ? std::visit([this](auto field) { return OptionText(Self().*field); }, row->Field) : QString();
    }
    bool Set(const QString& name, const QString& value) override
    {
        const TOptionRow<T>* row = Find(name);
        auto& self = static_cast<T&>(*this);
        return row && std::visit([&](auto field) { return ReadOption(value, self.*field); }, row->Field);
    }

private:
    const T& Self() const { return static_cast<const T&>(*this); }
    static const TOptionRow<T>* Find(const QString& name)
    {
        for (const TOptionRow<T>& row : T::Rows())
            if (row.Name.compare(name, Qt::CaseInsensitive) == 0)
                return &row;
        return nullptr;
    }
};

} // namespace Kestrune
