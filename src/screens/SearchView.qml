import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import QuillFern.Screens
import QuillFern.Session
import QuillFern.Theme

// Any player's public rank and champion mastery, looked up by Riot ID.
Item {
    id: root
    required property AppState appState
    // Lets a host (or the screenshot tour) reach the search.
    readonly property SearchModel model: search

    SearchModel {
        id: search
        appState: root.appState
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: Theme.blockSpacing

        SearchField {
            Layout.fillWidth: true
            placeholder: "Name#TAG"
            buttonText: "Search"
            canSubmit: search.canSearch
            text: search.riotId
            onTextChanged: search.riotId = text
            onSubmitted: search.search()
        }
        BusyIndicator {
            visible: search.busy
            running: visible
            Layout.preferredWidth: 32
            Layout.preferredHeight: 32
        }
        ThemeText {
            visible: search.hasError
            role: Theme.Callout
            Layout.fillWidth: true
            text: search.errorText
            color: Theme.loss
            wrapMode: Text.Wrap
        }
        ScrollView {
            id: scroller
            visible: search.hasProfile
            Layout.fillWidth: true
            Layout.fillHeight: true
            contentWidth: availableWidth
            clip: true
            ProfileCard {
                width: scroller.availableWidth
                profile: search
            }
        }
        EmptyState {
            visible: search.isIdle
            Layout.alignment: Qt.AlignHCenter
            Layout.topMargin: 60
            icon: "magnifyingglass"
            title: "Find a player"
            message: "Search a Riot ID (Name#TAG) to see a player's public rank and champion mastery — handy for finding yourself or a friend to track."
        }
        Item {
            visible: !search.hasProfile
            Layout.fillHeight: true
        }
    }
}
