// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/SectionNote.h"

#include "UserInterface/MainWindowSections.h"
#include "UserInterface/Theme.h"

#include <QGuiApplication>
#include <QLabel>

#include <map>

namespace tovik {

namespace {

constexpr double kTextSize = 12;
constexpr double kTextAlpha = 0.72;

QString noteFor(const std::string& title) {
    static const std::map<std::string, const char*> notes{
        {kCorrectionsSection,
         "Corrections are applied to every transcript. They are kept in the settings file "
         "~/.config/tovik-record/defaults.json under \"transcription.customDictionary\", as pairs of what is "
         "heard and what is meant."},
        {kCleanupSection,
         "Filler words are removed while \"TovikVoiceRemoveFillerWords\" is true in the settings file "
         "~/.config/tovik-record/defaults.json. \"TovikVoiceFillerWords\" holds the words, separated by "
         "commas."},
        {kTranslationSection,
         "Transcripts are translated while \"TranslationEnabled\" is true in the settings file "
         "~/.config/tovik-record/defaults.json."},
    };
    const auto found = notes.find(title);
    return found == notes.end() ? QString() : QString::fromUtf8(found->second);
}

} // namespace

QWidget* makeSectionNote(const std::string& sectionTitle) {
    auto* note = new QLabel(noteFor(sectionTitle));
    note->setFont(theme::font(kTextSize));
    note->setWordWrap(true);
    note->setTextFormat(Qt::PlainText);
    QPalette palette = note->palette();
    const Rgba label = theme::labelColor(QGuiApplication::palette(), theme::kCardBackground);
    palette.setColor(QPalette::WindowText, theme::color(label.withAlpha(kTextAlpha)));
    note->setPalette(palette);
    return note;
}

} // namespace tovik
