import QtQuick
import QuillFern.Theme

// A title in the heavy display cut: the section's name, a rank, the app's name.
ThemeText {
    role: Theme.DisplayLarge
    font.weight: Font.Bold
    font.letterSpacing: -0.5
    color: "white"
    elide: Text.ElideRight
}
