import QtQuick
import QtQuick.Controls.Basic
import QuillFern.Overlay
import QuillFern.Theme

// The overlay's settings: the switch with its status line, and how the overlay works.
Item {
    id: root
    required property OverlayManager overlay
    // Lets a host (or the screenshot tour) reach the screen's state.
    readonly property OverlayViewModel model: view

    OverlayViewModel {
        id: view
        overlay: root.overlay
    }

    Flickable {
        id: page
        anchors.fill: parent
        contentWidth: width
        contentHeight: cards.implicitHeight
        clip: true
        boundsBehavior: Flickable.StopAtBounds

        Column {
            id: cards
            width: Math.min(page.width, 720)
            spacing: Theme.blockSpacing

            GroupCard {
                width: parent.width
                title: "In-game overlay"
                icon: "rectangle.on.rectangle"

                Column {
                    width: parent.width
                    spacing: Theme.controlSpacing

                    Switch {
                        id: toggle
                        checked: root.overlay.enabled
                        onToggled: {
                            root.overlay.enabled = checked
                            // A press sets checked itself; the manager stays what it shows.
                            checked = Qt.binding(() => root.overlay.enabled)
                        }
                        padding: 0
                        spacing: Theme.controlSpacing
                        indicator: Rectangle {
                            x: toggle.leftPadding
                            anchors.verticalCenter: parent.verticalCenter
                            implicitWidth: 38
                            implicitHeight: 22
                            radius: 11
                            color: toggle.checked ? Theme.gold : Qt.rgba(1, 1, 1, 0.14)
                            border.width: 1
                            border.color: toggle.checked ? Theme.gold : Qt.rgba(1, 1, 1, 0.2)
                            Rectangle {
                                x: toggle.checked ? parent.width - width - 2 : 2
                                anchors.verticalCenter: parent.verticalCenter
                                width: 18
                                height: 18
                                radius: 9
                                color: "white"
                            }
                        }
                        contentItem: ThemeText {
                            leftPadding: toggle.indicator.width + toggle.spacing
                            role: Theme.Body
                            text: "Show skill-order overlay in game"
                            color: Theme.text
                            verticalAlignment: Text.AlignVCenter
                        }
                    }

                    Row {
                        spacing: Theme.itemSpacing
                        Rectangle {
                            anchors.verticalCenter: parent.verticalCenter
                            width: 7
                            height: 7
                            radius: 3.5
                            color: view.statusIsLive ? Theme.win : Theme.textDim
                        }
                        ThemeText {
                            role: Theme.Callout
                            text: root.overlay.status
                            color: Theme.textSecondary
                        }
                    }
                }
            }

            GroupCard {
                width: parent.width
                title: "How it works"
                icon: "info.circle"

                Column {
                    width: parent.width
                    spacing: 8

                    Repeater {
                        model: view.howItWorks
                        delegate: Row {
                            id: bullet
                            required property string modelData
                            width: parent ? parent.width : 0
                            spacing: Theme.itemSpacing
                            Rectangle {
                                y: 7
                                width: 5
                                height: 5
                                radius: 2.5
                                color: Theme.gold
                            }
                            ThemeText {
                                width: bullet.width - 5 - bullet.spacing
                                role: Theme.Callout
                                text: bullet.modelData
                                textFormat: Text.MarkdownText
                                wrapMode: Text.Wrap
                                color: Theme.textSecondary
                            }
                        }
                    }
                }
            }
        }
    }
}
