#pragma once

class TFormMain;

/// Plugs every window of the program into its route of the frame.
void RegisterWindows(TFormMain& frame);
