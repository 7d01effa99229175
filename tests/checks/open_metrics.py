# open_metrics.py [FILE]: reads OpenMetrics text (standard input without FILE) with Prometheus' own parser, and prints it
# as JSON: {family: {"type": ..., "unit": ..., "help": ..., "samples": [[name, {label: value}, number], ...]}}. Ends with
# an error where the parser finds one.
import json
import sys

from prometheus_client.openmetrics.parser import text_string_to_metric_families

with open(sys.argv[1] if len(sys.argv) > 1 else 0, encoding="utf-8", newline="") as source:
    text = source.read()
families = {}
for family in text_string_to_metric_families(text):
    samples = [[sample.name, sample.labels, sample.value] for sample in family.samples]
    families[family.name] = {"type": family.type, "unit": family.unit, "help": family.documentation, "samples": samples}
print(json.dumps(families))
