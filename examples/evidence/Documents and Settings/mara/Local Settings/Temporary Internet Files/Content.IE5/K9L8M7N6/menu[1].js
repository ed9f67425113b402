document.title = 'Harbour News';
