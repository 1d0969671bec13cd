#pragma once

/// Lets screen readers read text panes; as often as one likes.
void installTextPaneAccessible();
