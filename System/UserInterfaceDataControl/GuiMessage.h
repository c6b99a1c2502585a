// What is said to the front end, or heard from it.
#pragma once

class GuiMessage {};
