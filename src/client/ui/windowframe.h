#pragma once

class QWidget;

namespace client {

// The look every borderless window of the program shares: its background, a darker title
// band 30 pixels high and a thin border. Called from a window's paint event.
void paintWindowFrame(QWidget &window);

} // namespace client
