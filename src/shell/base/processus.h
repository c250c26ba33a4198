#pragma once

// What every program of ours does first, before any file is made or any time
// is converted (the agenda, tavonel-admin, the benches):
// - the creation mask 0007, so that every file made in the shared folder is
//   for the practice's group only;
// - on Linux, a TZ that names the machine's own zone once (":/etc/localtime")
//   when the session gives none. Without TZ, every local-time conversion looks
//   at the zone file again, which doubles the cost of reading a week of
//   appointments. A TZ the session gives is kept as it is.
void PreparerProcessus();
