#pragma once
// Ids of the templates in dialog_templates.rc: 300 to 349. Items have ids from 1000 on.
