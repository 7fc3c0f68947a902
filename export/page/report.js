// The report: repairs, messages of the reader, and how the page differs from the scene.
function showReport(report) {
  const parts = [
    ['Repaired', (report.repairs || []).map((repair) => repair.file + ':' + repair.line + ': ' + repair.text)],
    ['Messages while reading', report.messages || []],
    ['Differences from the scene', (report.notes || []).map((note) => (note.where ? note.where + ': ' : '') + note.text)],
  ].filter(([, texts]) => texts.length > 0);
  const text = byId('reportText');
  let count = 0;
  for (const [title, texts] of parts) {
    const list = element('ul');
    appendInPortions(list, texts, (line) => element('li', line));
    text.append(element('h2', title), list);
    count += texts.length;
  }
  byId('reportTitle').textContent = count > 0 ? 'Report (' + count.toLocaleString('en') + ')' : 'Report';
  if (count === 0) text.append(element('p', 'Nothing was repaired or left out.'));
}
