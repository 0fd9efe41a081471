#include "components/mdi_frame.h"

#include <algorithm>

TMdiFrame* MdiFrame = nullptr;

TChildCommands::~TChildCommands() = default;

void TChildCommands::Find(int next) {
    (void)next;
}

TMdiFrame::~TMdiFrame() = default;

namespace qm {

QRect ClampToClient(const QRect& geometry, const QSize& client) {
    if (client.isEmpty())
        return geometry;
    QRect clamped = geometry;
    clamped.setWidth(std::min(geometry.width(), client.width()));
    clamped.setHeight(std::min(geometry.height(), client.height()));
    clamped.moveLeft(std::max(0, std::min(geometry.left(), client.width() - clamped.width())));
    clamped.moveTop(std::max(0, std::min(geometry.top(), client.height() - clamped.height())));
    return clamped;
}

} // namespace qm
