// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uDefaults.h"
#include "uDialog.h"

#include <functional>

class QFormLayout;
class QListWidget;
class QStackedWidget;

namespace Kestrune {

class TDataModuleMain;

/// The options: pages of settings over a draft, which takes the place of the settings when the dialog is accepted.
class TOptionsWindow : public TDialog {
    Q_OBJECT
public:
    /// Friends are read from the data module.
    TOptionsWindow(const TDefaults& settings, TDataModuleMain& dataModule, QWidget* parent);

    const TDefaults& Settings() const { return FDraft; }
    /// True when the size of the thumbnails was changed: the stored ones are of another size.
    bool ThumbnailSizeChanged() const { return FDraft.LargeHeight != FFirstHeight; }
    void ShowPage(int page);
    /// The pages that other windows lead to.
    void ShowServicesPage() { ShowPage(FServicesPage); }
    void ShowNetworkPage() { ShowPage(FNetworkPage); }

Q_SIGNALS:
    /// The service package is to be updated now.
    void updateServicesRequested();
    /// Theme or accent of the draft changed, to be shown at once; also told when they are as they were.
    void lookChanged(int themeIndex, int accentIndex);

protected:
    void reject() override;

private:
    QFormLayout* AddPage(const QString& captionKey, const QString& noteKey = {});
    void AddCheck(QFormLayout& page, const QString& key, bool& value);
    void AddText(QFormLayout& page, const QString& key, QString& value, int size = 0);
    void AddNumber(QFormLayout& page, const QString& key, int& value, int least, int most);
    void AddChoice(QFormLayout& page, const QString& key, int& value, const QStringList& items);
    void AddList(QFormLayout& page, const QString& key, QString& value, const QStringList& items, bool free);
    void AddCodes(QFormLayout& page, const QString& key, const std::vector<std::pair<QString, QString>>& items,
                  const QString& current, const std::function<void(const QString&)>& store, const QString& none = {});
    void AddFolder(QFormLayout& page, const QString& key, QString& value);
    void GeneralPage();
    void AppearancePage();
    void LanguagePage();
    void FoldersPage();
    void ArticlesPage();
    void DefaultValuesPage(TDataModuleMain& dataModule);
    void CustomFieldsPage();
    void CustomFieldRows(QFormLayout& page, const QString& captionKey, TCustomFieldDefs& fields);
    void AudioScanPage();
    void ServicesPage();
    void NetworkPage();
    void Search(const QString& text);

    TDefaults FDraft;
    int FFirstHeight;
    int FFirstTheme;
    int FFirstAccent;
    int FServicesPage = 0;
    int FNetworkPage = 0;
    QListWidget* FPages;
    QStackedWidget* FStack;
};

} // namespace Kestrune
