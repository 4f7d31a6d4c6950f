// SPDX-License-Identifier: GPL-3.0-or-later
#include "dmMain.h"
#include "uAdding.h"
#include "uColumnNames.h"
#include "uDictionaries.h"
#include "uInfoGrabber.h"
#include "uOptionsWindow.h"
#include "uTHStrings.h"
#include "uTheme.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

QStringList Texts(const QStringList& keys)
{
    QStringList texts;
    for (const QString& key : keys)
        texts << GetLanguageString(key);
    return texts;
}

} // namespace

void TOptionsWindow::GeneralPage()
{
    QFormLayout& page = *AddPage(u"cSOptGeneral"_s);
    AddText(page, u"cSOptCurrency"_s, FDraft.CurrencySymbol, 10);
    AddNumber(page, u"cSOptThumbHeight"_s, FDraft.LargeHeight, 60, 250);
    auto* note = new QLabel(GetLanguageString(u"cSOptThumbNote"_s), page.parentWidget());
    note->setWordWrap(true);
    page.addRow(note);
}

void TOptionsWindow::AppearancePage()
{
    QFormLayout& page = *AddPage(u"cSOptAppearance"_s);
    AddChoice(page, u"cSOptTheme"_s, FDraft.ThemeIndex,
              Texts({u"cSOptThemeLight"_s, u"cSOptThemeDark"_s, u"cSOptThemeLightContrast"_s,
                     u"cSOptThemeDarkContrast"_s, u"cSOptThemeDesktop"_s}));
    AddChoice(page, u"cSOptAccent"_s, FDraft.ColorSchemeAccentIndex,
              Texts({u"cSOptAccentPetrol"_s, u"cSOptAccentChestnut"_s, u"cSOptAccentIndigo"_s, u"cSOptAccentPlum"_s,
                     u"cSOptAccentMoss"_s, u"cSOptAccentGraphite"_s}));
    AddCheck(page, u"cSOptDesktopIcons"_s, FDraft.DesktopIcons);
}

void TOptionsWindow::LanguagePage()
{
    QFormLayout& page = *AddPage(u"cSOptLanguage"_s, u"cSOptLanguageNote"_s);
    TLanguagesListEx2 languages;
    languages.Fill(LanguageFolder());
    languages.SortByValues();
    std::vector<std::pair<QString, QString>> items{{u"English"_s, u"English"_s}};
    for (const TLang& language : languages.Items())
        if (language.FileName != "English"_L1)
            items.emplace_back(language.FileName, language.Name);
    AddCodes(page, u"cSOptLanguage"_s, items, FDraft.Language,
             [this](const QString& language) { FDraft.Language = language; });
}

void TOptionsWindow::FoldersPage()
{
    QFormLayout& page = *AddPage(u"cSOptFolders"_s);
    AddFolder(page, u"cSOptDBFolder"_s, FDraft.DefaultDBFolder);
}

void TOptionsWindow::ArticlesPage()
{
    QFormLayout& page = *AddPage(u"cSOptArticles"_s, u"cSOptArticlesNote"_s);
    AddCheck(page, u"cSOptArticlesEnabled"_s, FDraft.ArticlesEnabled);
    AddChoice(
        page, u"cSOptArticlesMode"_s, FDraft.ArticlesDisplayMode,
        Texts({u"cSOptArticlesMode0"_s, u"cSOptArticlesMode1"_s, u"cSOptArticlesMode2"_s, u"cSOptArticlesMode3"_s}));
    AddCheck(page, u"cSOptArticlesSort"_s, FDraft.ArticlesSortWithout);
    AddCheck(page, u"cSOptArticlesArtist"_s, FDraft.ArticlesFieldArtist);
    AddCheck(page, u"cSOptArticlesRelease"_s, FDraft.ArticlesFieldReleaseName);
    auto* list = new QPlainTextEdit(FDraft.ArticlesList.join(u'\n'), page.parentWidget());
    list->setTabChangesFocus(true);
    list->setMinimumHeight(160);
    connect(list, &QPlainTextEdit::textChanged, this, [this, list] {
        FDraft.ArticlesList.clear();
        for (const QString& line : SplitLines(list->toPlainText()))
            if (!line.trimmed().isEmpty())
                FDraft.ArticlesList << line.trimmed();
    });
    page.addRow(GetLanguageString(u"cSOptArticlesList"_s), list);
}

void TOptionsWindow::DefaultValuesPage(TDataModuleMain& dataModule)
{
    QFormLayout& page = *AddPage(u"cSOptDefaults"_s, u"cSOptDefaultsNote"_s);
    TDefaultValues& values = FDraft.Values;
    AddList(page, u"cSReleasesFieldStatusId"_s, values.Status, FDraft.Statuses.Items(), true);
    AddList(page, u"cSReleasesFieldMediaTypeId"_s, values.MediaType, FDraft.MediaTypes.Items(), true);
    AddList(page, u"cSReleasesFieldGenreId"_s, values.Genre, FDraft.Genres.Items(), true);
    AddList(page, u"cSReleasesFieldLocation"_s, values.Location, FDraft.Locations.Items(), true);
    AddList(page, u"cSReleasesFieldConditionId"_s, values.Condition, FDraft.Conditions.Items(), true);
    AddList(page, u"cSReleasesFieldConditionMedia"_s, values.MediaCondition, FDraft.Conditions.Items(), true);
    AddList(page, u"cSReleasesFieldChanellsId"_s, values.Channels, FDraft.Channels.Items(), true);
    AddList(page, u"cSReleasesFieldSpars"_s, values.Spars, SparsList(), false);
    AddText(page, u"cSReleasesFieldPurchaseStore"_s, values.PurchaseStore, 200);
    AddText(page, u"cSReleasesFieldCurrency"_s, values.Currency, 3);
    AddNumber(page, u"cSReleasesFieldQuantity"_s, values.Quantity, 0, 100000);
    AddNumber(page, u"cSOptRating"_s, values.Rating, 0, 10);
    std::vector<std::pair<QString, QString>> countries;
    for (const TCountry& country : Countries())
        if (!country.Value.isEmpty())
            countries.emplace_back(country.Value, country.Description);
    AddCodes(page, u"cSReleasesFieldCountryCode"_s, countries, values.Country,
             [&values](const QString& code) { values.Country = code; });
    std::vector<std::pair<QString, QString>> friends;
    if (dataModule.qFriends.Active())
        for (int row = 0; row < dataModule.qFriends.RecordCount(); ++row)
            friends.emplace_back(QString::number(dataModule.qFriends.KeyAt(row)),
                                 VarToStr(dataModule.qFriends.ValueAt(row, dataModule.qFriends.FieldIndex(Col::Name))));
    AddCodes(page, u"cSReleasesFieldOwnerId"_s, friends, values.Owner > 0 ? QString::number(values.Owner) : QString(),
             [&values](const QString& id) { values.Owner = id.toInt(); });
    AddCheck(page, u"cSReleasesFieldIsLive"_s, values.IsLive);
    AddCheck(page, u"cSReleasesFieldIsRare"_s, values.IsRare);
}

void TOptionsWindow::CustomFieldsPage()
{
    QFormLayout& page = *AddPage(u"cSOptCustom"_s, u"cSOptCustomNote"_s);
    AddCheck(page, u"cSOptCustomEnabled"_s, FDraft.CustomFieldsEnabled);
    CustomFieldRows(page, u"cSOptCustomReleases"_s, FDraft.ReleaseFields);
    CustomFieldRows(page, u"cSOptCustomTracks"_s, FDraft.TrackFields);
}

void TOptionsWindow::CustomFieldRows(QFormLayout& page, const QString& captionKey, TCustomFieldDefs& fields)
{
    auto* holder = new QWidget(page.parentWidget());
    auto* grid = new QGridLayout(holder);
    grid->setContentsMargins(0, 4, 0, 4);
    const QStringList types = Texts({u"cSOptTypeText"_s, u"cSOptTypeInteger"_s, u"cSOptTypeFloat"_s,
                                     u"cSOptTypeCurrency"_s, u"cSOptTypeBoolean"_s});
    for (int slot = 0; slot < 10; ++slot) {
        TCustomFieldDef& def = fields.Slots[static_cast<size_t>(slot)];
        const QString name = GetLanguageString(u"cSOptCustomSlot"_s).arg(slot + 1);
        auto* enabled = new QCheckBox(name, holder);
        enabled->setChecked(def.Enabled);
        auto* caption = new QLineEdit(def.DisplayName, holder);
        caption->setAccessibleName(name);
        auto* type = new QComboBox(holder);
        type->addItems(types);
        type->setCurrentIndex(def.DataType >= 0 && def.DataType < types.size() ? def.DataType : 0);
        type->setAccessibleName(name);
        connect(enabled, &QCheckBox::toggled, this, [&def](bool on) { def.Enabled = on; });
        connect(caption, &QLineEdit::textChanged, this, [&def](const QString& text) { def.DisplayName = text; });
        connect(type, &QComboBox::activated, this, [&def](int index) { def.DataType = index; });
        grid->addWidget(enabled, slot, 0);
        grid->addWidget(caption, slot, 1);
        grid->addWidget(type, slot, 2);
    }
    grid->setColumnStretch(1, 1);
    auto* label = new QLabel(GetLanguageString(captionKey), page.parentWidget());
    page.addRow(label);
    page.addRow(holder);
}

void TOptionsWindow::AudioScanPage()
{
    QFormLayout& page = *AddPage(u"cSOptScan"_s);
    AddCheck(page, u"cSOptScanCovers"_s, FDraft.MP3ScanFindCovers);
    AddCheck(page, u"cSOptScanBack"_s, FDraft.MP3ScanBackCover);
    AddCheck(page, u"cSOptScanMedia"_s, FDraft.MP3ScanMediaCover);
    AddCheck(page, u"cSOptScanOther"_s, FDraft.MP3ScanOtherImages);
}

void TOptionsWindow::ServicesPage()
{
    FServicesPage = FPages->count();
    QFormLayout& page = *AddPage(u"cSOptServices"_s, u"cSOptServicesNote"_s);
    std::vector<std::pair<QString, QString>> countries;
    for (const TCountry& country : Countries())
        if (!country.Value.isEmpty())
            countries.emplace_back(country.Value, country.Description);
    const QStringList media = Texts({u"cSOptMediaAll"_s, u"cSOptMediaCD"_s, u"cSOptMediaVinyl"_s, u"cSOptMediaFile"_s,
                                     u"cSOptMediaDVD"_s, u"cSOptMediaCassette"_s});
    AddCodes(page, u"cSOptMBCountry"_s, countries, FDraft.MusicBrainzCountry,
             [this](const QString& code) { FDraft.MusicBrainzCountry = code; });
    AddChoice(page, u"cSOptMBMedia"_s, FDraft.MusicBrainzMediaType, media);
    AddNumber(page, u"cSOptMBPages"_s, FDraft.MusicBrainzResultsPerPage, 1, 100);
    AddCodes(page, u"cSOptDiscogsCountry"_s, countries, FDraft.DiscogsCountry,
             [this](const QString& code) { FDraft.DiscogsCountry = code; });
    AddChoice(page, u"cSOptDiscogsMedia"_s, FDraft.DiscogsMediaType, media);
    AddNumber(page, u"cSOptDiscogsPages"_s, FDraft.DiscogsResultsPerPage, 1, 100);
    std::vector<std::pair<QString, QString>> shops;
    for (const auto& country : countries)
        if (HasITunesShop(country.first))
            shops.push_back(country);
    AddCodes(
        page, u"cSOptITunesCountry"_s, shops, FDraft.ITunesCountry,
        [this](const QString& code) { FDraft.ITunesCountry = code; }, GetLanguageString(u"cSOptITunesLocale"_s));
    AddText(page, u"cSOptServicesContact"_s, FDraft.ServicesContact, 200);
    AddCheck(page, u"cSOptAutoUpdate"_s, FDraft.AutoUpdate);
    AddChoice(page, u"cSOptInterval"_s, FDraft.AutoUpdateInterval,
              Texts({u"cSOptInterval0"_s, u"cSOptInterval1"_s, u"cSOptInterval2"_s, u"cSOptInterval3"_s}));
    auto* update = new QPushButton(GetLanguageString(u"cSUpdateNow"_s), page.parentWidget());
    update->setAutoDefault(false);
    update->setEnabled(TAdding::CanUpdateServices());
    connect(update, &QPushButton::clicked, this, &TOptionsWindow::updateServicesRequested);
    page.addRow(update);
    if (update->isEnabled())
        return;
    auto* note = new QLabel(GetLanguageString(u"cSUpdateNoEndpoint"_s), page.parentWidget());
    note->setWordWrap(true);
    page.addRow(note);
}

void TOptionsWindow::NetworkPage()
{
    FNetworkPage = FPages->count();
    QFormLayout& page = *AddPage(u"cSOptNetwork"_s, u"cSOptNetworkNote"_s);
    AddChoice(page, u"cSOptInetAccess"_s, FDraft.InetAccess, Texts({u"cSOptInetProxy"_s, u"cSOptInetDirect"_s}));
    AddText(page, u"cSOptProxyHost"_s, FDraft.ProxyHost, 250);
    AddNumber(page, u"cSOptProxyPort"_s, FDraft.ProxyPort, 0, 65535);
    AddText(page, u"cSOptProxyUser"_s, FDraft.ProxyUsername, 250);
    AddText(page, u"cSOptProxyPassword"_s, FDraft.ProxyPassword, 250);
    for (QLineEdit* edit : page.parentWidget()->findChildren<QLineEdit*>())
        if (page.labelForField(edit) &&
            static_cast<QLabel*>(page.labelForField(edit))->text() == GetLanguageString(u"cSOptProxyPassword"_s))
            edit->setEchoMode(QLineEdit::Password);
    AddCheck(page, u"cSOptVerify"_s, FDraft.VerifyCertificates);
}

} // namespace Kestrune
