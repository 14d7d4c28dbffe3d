import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import QuillFern.Screens
import QuillFern.Session
import QuillFern.Theme

// Frequent duos and the record with one player. The duo list is fetched each time the screen
// comes into view.
Item {
    id: root
    required property AppState appState
    // Lets a host (or the screenshot tour) reach the look-up.
    readonly property FriendsModel model: friends

    FriendsModel {
        id: friends
        appState: root.appState
    }
    Component.onCompleted: friends.loadDuos()

    ColumnLayout {
        anchors.fill: parent
        spacing: Theme.blockSpacing

        SearchField {
            Layout.fillWidth: true
            placeholder: "Look up any Name#TAG"
            buttonText: "Find"
            canSubmit: friends.canFind
            text: friends.riotId
            onTextChanged: friends.riotId = text
            onSubmitted: friends.lookup()
        }
        BusyIndicator {
            visible: friends.busy
            running: visible
            Layout.preferredWidth: 32
            Layout.preferredHeight: 32
        }
        ThemeText {
            visible: friends.hasError
            role: Theme.Callout
            Layout.fillWidth: true
            text: friends.errorText
            color: Theme.loss
            wrapMode: Text.Wrap
        }

        // The record with one player.
        Item {
            visible: friends.hasDetail
            Layout.preferredHeight: back.implicitHeight
            Layout.preferredWidth: back.implicitWidth
            Row {
                id: back
                spacing: 4
                Symbol {
                    anchors.verticalCenter: parent.verticalCenter
                    name: "chevron.left"
                    size: 18
                    color: backArea.containsMouse ? Theme.goldBright : Theme.gold
                }
                ThemeText {
                    role: Theme.Body
                    anchors.verticalCenter: parent.verticalCenter
                    text: "Back to duos"
                    color: backArea.containsMouse ? Theme.goldBright : Theme.gold
                    font.weight: Font.DemiBold
                }
            }
            MouseArea {
                id: backArea
                anchors.fill: parent
                anchors.margins: -6
                hoverEnabled: true
                cursorShape: Qt.PointingHandCursor
                onClicked: friends.back()
            }
        }
        EmptyState {
            visible: friends.hasDetail && !friends.hasGamesTogether
            Layout.alignment: Qt.AlignHCenter
            Layout.topMargin: 50
            icon: "person.2.slash"
            title: "No games together"
            message: friends.noGamesMessage
        }
        ScrollView {
            id: recordScroller
            visible: friends.hasDetail && friends.hasGamesTogether
            Layout.fillWidth: true
            Layout.fillHeight: true
            contentWidth: availableWidth
            clip: true
            FriendRecordCard {
                width: recordScroller.availableWidth
                record: friends
            }
        }

        // The duo list.
        Item {
            visible: !friends.hasDetail && friends.duoListState === FriendsModel.Loading
            Layout.fillWidth: true
            Layout.preferredHeight: 120
            BusyIndicator {
                anchors.centerIn: parent
                width: 40
                height: 40
                running: parent.visible
            }
        }
        GlassCard {
            visible: !friends.hasDetail && friends.duoListState === FriendsModel.Failed
            Layout.alignment: Qt.AlignHCenter
            Layout.topMargin: 40
            Layout.preferredWidth: Math.min(480, root.width)
            padding: 28
            Column {
                width: parent.width
                spacing: Theme.cardSpacing
                Symbol {
                    anchors.horizontalCenter: parent.horizontalCenter
                    name: "wifi.exclamationmark"
                    size: 36
                    color: Theme.loss
                }
                ThemeText {
                    role: Theme.Subtitle
                    anchors.horizontalCenter: parent.horizontalCenter
                    text: "Can't reach the server"
                    font.weight: Font.DemiBold
                }
                ThemeText {
                    role: Theme.Body
                    width: parent.width
                    text: friends.duosErrorText
                    color: Theme.textSecondary
                    horizontalAlignment: Text.AlignHCenter
                    wrapMode: Text.Wrap
                }
                Rectangle {
                    anchors.horizontalCenter: parent.horizontalCenter
                    width: retryLabel.implicitWidth + 44
                    height: 36
                    radius: Theme.buttonRadius
                    color: retryArea.containsMouse ? Theme.goldBright : Theme.gold
                    Row {
                        id: retryLabel
                        anchors.centerIn: parent
                        spacing: 6
                        Symbol {
                            anchors.verticalCenter: parent.verticalCenter
                            name: "arrow.clockwise"
                            size: 15
                            color: Theme.textOnGold
                        }
                        ThemeText {
                            role: Theme.Callout
                            anchors.verticalCenter: parent.verticalCenter
                            text: "Retry"
                            color: Theme.textOnGold
                            font.weight: Font.Bold
                        }
                    }
                    MouseArea {
                        id: retryArea
                        anchors.fill: parent
                        hoverEnabled: true
                        cursorShape: Qt.PointingHandCursor
                        onClicked: friends.loadDuos()
                    }
                }
            }
        }
        EmptyState {
            visible: !friends.hasDetail && friends.duoListState === FriendsModel.Empty
            Layout.alignment: Qt.AlignHCenter
            Layout.topMargin: 60
            icon: "person.2"
            title: "No frequent duos yet"
            message: "Players you've queued with 3+ times will show here as your archive grows."
        }
        SectionLabel {
            visible: !friends.hasDetail && friends.duoListState === FriendsModel.Listed
            Layout.topMargin: 6
            text: "Frequent Duos · auto-detected"
        }
        ListView {
            visible: !friends.hasDetail && friends.duoListState === FriendsModel.Listed
            Layout.fillWidth: true
            Layout.fillHeight: true
            clip: true
            spacing: Theme.itemSpacing
            model: friends.duos
            delegate: DuoRow {
                width: ListView.view.width
                onTapped: friends.lookupPuuid(puuid, name) // qmllint disable unqualified
            }
        }
        // Keeps the states above at the top when the list is not what fills the screen.
        Item {
            visible: !(friends.hasDetail && friends.hasGamesTogether)
                     && !(!friends.hasDetail && friends.duoListState === FriendsModel.Listed)
            Layout.fillHeight: true
        }
    }
}
