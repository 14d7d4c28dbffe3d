import QtQuick
import QtQuick.Layouts
import QuillFern.App
import QuillFern.Session
import QuillFern.Theme

// The section list with the account card on top and the sync banner at the bottom.
Item {
    id: root
    required property int selection
    required property SidebarModel model
    signal select(int section)

    Rectangle {
        anchors.fill: parent
        color: Qt.rgba(Theme.glassDark.r, Theme.glassDark.g, Theme.glassDark.b, 0.62)
    }
    Rectangle {
        anchors.right: parent.right
        width: 1
        height: parent.height
        color: Qt.rgba(1, 1, 1, 0.08)
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 12
        spacing: Theme.inlineSpacing

        Item { Layout.preferredHeight: 30 - parent.anchors.margins; Layout.fillWidth: true }

        // Account card.
        Rectangle {
            Layout.fillWidth: true
            Layout.preferredHeight: 58
            radius: Theme.buttonRadius
            color: cardArea.containsMouse ? Qt.rgba(1, 1, 1, 0.07) : Qt.rgba(1, 1, 1, 0.04)
            RowLayout {
                anchors.fill: parent
                anchors.margins: 10
                spacing: Theme.controlSpacing
                SummonerAvatar {
                    size: 38
                    iconId: root.model.avatarIconId
                    fallbackChampion: root.model.avatarChampion
                }
                ColumnLayout {
                    Layout.fillWidth: true
                    spacing: Theme.lineSpacing
                    ThemeText {
                        role: Theme.Body
                        Layout.fillWidth: true
                        text: root.model.accountName
                        font.weight: Font.DemiBold
                        elide: Text.ElideRight
                    }
                    ThemeText {
                        role: Theme.Caption
                        Layout.fillWidth: true
                        text: root.model.rankLine
                        color: Theme.gold
                        font.weight: Font.Medium
                        elide: Text.ElideRight
                    }
                }
            }
            MouseArea {
                id: cardArea
                anchors.fill: parent
                hoverEnabled: true
                cursorShape: Qt.PointingHandCursor
                onClicked: root.select(NavSection.Overview)
            }
        }

        SectionLabel {
            text: "Menu"
            Layout.topMargin: 12
            Layout.leftMargin: 6
            Layout.bottomMargin: 2
        }

        Repeater {
            model: NavSection.count
            NavButton {
                required property int index
                Layout.fillWidth: true
                item: index
                isSelected: root.selection === index // qmllint disable unqualified
                onAction: root.select(index) // qmllint disable unqualified
            }
        }

        Item { Layout.fillHeight: true }

        // Sync banner.
        ColumnLayout {
            Layout.fillWidth: true
            spacing: Theme.itemSpacing
            RowLayout {
                spacing: Theme.itemSpacing
                Rectangle {
                    width: 7; height: 7; radius: 3.5
                    color: Theme.win
                    Rectangle {
                        anchors.centerIn: parent
                        width: 15; height: 15; radius: 7.5
                        color: Qt.rgba(Theme.win.r, Theme.win.g, Theme.win.b, 0.25)
                    }
                }
                ThemeText {
                    role: Theme.Footnote
                    text: root.model.archivedText
                    color: "white"
                    font.weight: Font.Bold
                }
            }
            ThemeText {
                role: Theme.Small
                Layout.fillWidth: true
                visible: AppState.lcuStatus.length > 0
                text: AppState.lcuStatus
                color: Theme.textDim
                elide: Text.ElideRight
            }
            Rectangle {
                Layout.fillWidth: true
                Layout.preferredHeight: 32
                radius: 8
                color: Qt.rgba(Theme.gold.r, Theme.gold.g, Theme.gold.b, syncArea.containsMouse && !AppState.isSyncing ? 0.24 : 0.16)
                Row {
                    anchors.centerIn: parent
                    spacing: Theme.inlineSpacing
                    Symbol {
                        id: syncSymbol
                        name: "arrow.clockwise"
                        size: 13
                        color: Theme.goldBright
                        // Turns while a sync runs and, when it ends, eases back to rest by the
                        // shorter way round. Driven from one handler so that the two never race.
                        RotationAnimation {
                            id: spin
                            target: syncSymbol
                            from: 0; to: 360
                            duration: 1000
                            loops: Animation.Infinite
                        }
                        RotationAnimation {
                            id: settle
                            target: syncSymbol
                            duration: 250
                            direction: RotationAnimation.Shortest
                            to: 0
                        }
                        function follow() {
                            if (AppState.isSyncing) {
                                settle.stop()
                                spin.start()
                            } else if (spin.running) {
                                spin.stop()
                                settle.start()
                            }
                        }
                        Component.onCompleted: follow()
                        Connections {
                            target: AppState
                            function onIsSyncingChanged() { syncSymbol.follow() }
                        }
                    }
                    ThemeText {
                        role: Theme.Caption
                        anchors.verticalCenter: parent.verticalCenter
                        text: root.model.syncLabel
                        color: Theme.goldBright
                        font.weight: Font.DemiBold
                    }
                }
                MouseArea {
                    id: syncArea
                    anchors.fill: parent
                    hoverEnabled: true
                    enabled: !AppState.isSyncing
                    cursorShape: enabled ? Qt.PointingHandCursor : Qt.ArrowCursor
                    onClicked: AppState.requestSync()
                }
            }
        }
    }
}
