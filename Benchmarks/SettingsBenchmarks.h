// Loading the analyzer's settings and reading every item into its section.
#pragma once

double SettingsOurs();
double SettingsRapidxml();  // into maps of sections, steps and items
