#pragma once
// Ids of the templates in control_templates.rc: 400 to 449. Items have ids from 1000 on.
