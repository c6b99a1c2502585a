// The virtual board as a test, a console or a panel sees it.
#pragma once
