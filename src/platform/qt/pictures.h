// The pictures of the program, drawn as paths so that they are sharp at every zoom.
#pragma once

#include <QRectF>
#include <QRgb>

#include "platform/dialogs.h"

class QPainter;

namespace tabelion {

// The picture's size in the screen's own pixels: 13×13 for the boxes of rows, 20×20 for the icons
// of form rows, 96×48 for the logo, nothing for kNone.
Size pictureSize(Picture picture);
void paintPicture(QPainter& painter, Picture picture, const QRectF& area);

void paintMessageIcon(QPainter& painter, MessageIcon icon, const QRectF& area);
void paintHourGlass(QPainter& painter, const QRectF& area, QRgb colour);
// A check mark alone, as in menus.
void paintTick(QPainter& painter, const QRectF& area, QRgb colour);
enum class Pointing { kLeft, kRight, kUp, kDown };
void paintChevron(QPainter& painter, const QRectF& area, Pointing pointing, QRgb colour);

}  // namespace tabelion
