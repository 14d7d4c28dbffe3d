import QtQuick
import QuillFern.Theme

// Kills / deaths / assists, deaths in red.
ThemeText {
    property int kills: 0
    property int deaths: 0
    property int assists: 0
    role: Theme.Callout

    textFormat: Text.StyledText
    font.weight: Font.Bold
    text: Theme.kdaLineText(kills, deaths, assists)
}
