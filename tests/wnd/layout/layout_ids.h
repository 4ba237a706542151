#pragma once
// Ids of the templates in layout_templates.rc: 350 to 399. Items have ids from 1000 on.
