from hypothesis import HealthCheck, settings

# Results must not depend on how busy the machine is; `--hypothesis-profile=long` searches further.
settings.register_profile(
    "suite", max_examples=40, deadline=None, database=None, suppress_health_check=list(HealthCheck), derandomize=True
)
settings.register_profile(
    "long", max_examples=500, deadline=None, database=None, suppress_health_check=list(HealthCheck)
)
settings.load_profile("suite")
