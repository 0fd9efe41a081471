#include "components/mdi_frame.h"

TMdiFrame* MdiFrame = nullptr;

TChildCommands::~TChildCommands() = default;

void TChildCommands::Find(int next) {
    (void)next;
}

TMdiFrame::~TMdiFrame() = default;
