# SPDX-FileCopyrightText: Nightjar contributors
# SPDX-License-Identifier: Apache-2.0

# Short names for the scripts, which do all the work.
.PHONY: demo run test bench
demo run test bench:
	@scripts/$@
