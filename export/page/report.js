// The report: repairs of the scene, and what the page does not show.
function showReport(report) {
  const parts = [
    ['Repaired', (report.repairs || []).map((repair) => repair.file + ':' + repair.line + ': ' + repair.text)],
    ['Said while reading', report.messages || []],
    ['Not shown as the scene has it', (report.notes || []).map((note) => (note.where ? note.where + ': ' : '') + note.text)],
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
