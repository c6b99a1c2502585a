// Base of what is sent to the front end or received from it.
#pragma once

class GuiMessage {};
