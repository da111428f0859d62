"""What users under `mypy --strict` write; script/python has it checked, nothing runs it."""

from typing import assert_type

import zarnsys

SITE = zarnsys.Site(-29.0, -71.0)
first: float = zarnsys.altitude([1.0, 2.0], 0.0, 61000.0, SITE)[0]
lowest = zarnsys.moon([61000.0, 61001.0], SITE).altitude.min()
assert_type(zarnsys.moon(61000, SITE).altitude, float)
assert_type(zarnsys.observe(1.0, 2, 61000.0, SITE, extinction=0.2).sky, float)
assert_type(zarnsys.precess(1.0, 2.0, 61000.0), zarnsys.Position[float])
