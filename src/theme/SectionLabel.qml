import QtQuick
import QuillFern.Theme

// The small upper-case heading over a group.
ThemeText {
    role: Theme.Caption
    font.weight: Font.Bold
    font.letterSpacing: 0.7
    font.capitalization: Font.AllUppercase
    color: Theme.textDim
    elide: Text.ElideRight
}
